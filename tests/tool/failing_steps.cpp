// Stands before the engine of local dictionaries in a process: one step of a statement fails for
// want of memory, or the steps are counted.
//
//   TAV_FAILING_STEP=7 LD_PRELOAD=failing_steps.so tav_dict ...
//   TAV_STEPS_TO=count LD_PRELOAD=failing_steps.so tav_dict ...
#include <dlfcn.h>
#include <sqlite3.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

static int steps;

__attribute__((destructor)) static void tell() {
  const char* name = std::getenv("TAV_STEPS_TO");
  if (name == nullptr) return;
  if (std::FILE* file = std::fopen(name, "w"); file != nullptr) {
    std::fprintf(file, "%d\n", steps);
    std::fclose(file);
  }
}

// The engine's own steps, of a schema that it reads, have a memory that it counts by itself.
static bool is_engine(const void* caller) {
  Dl_info info{};
  return dladdr(caller, &info) != 0 && std::strstr(info.dli_fname, "libsqlite3") != nullptr;
}

extern "C" __attribute__((visibility("default"))) int sqlite3_step(sqlite3_stmt* statement) {
  static const auto step =
      reinterpret_cast<int (*)(sqlite3_stmt*)>(dlsym(RTLD_NEXT, "sqlite3_step"));
  static const char* failing = std::getenv("TAV_FAILING_STEP");
  if (is_engine(__builtin_return_address(0))) return step(statement);
  ++steps;
  return failing != nullptr && steps == std::atoi(failing) ? SQLITE_NOMEM : step(statement);
}
