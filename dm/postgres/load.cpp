// Finding and loading the module.
#include <dlfcn.h>
#include <unistd.h>

#include <climits>
#include <cstring>

#include "dm/postgres/module.h"

namespace dm {

static constexpr char FILE_NAME[] = "tav_dm_postgres.so";

// The folder of the running program, with a slash at its end.
static std::string program_folder() {
  char path[PATH_MAX];
  const ssize_t length = readlink("/proc/self/exe", path, sizeof path);
  const std::string program(path, length > 0 ? static_cast<size_t>(length) : 0);
  return program.substr(0, program.rfind('/') + 1);
}

// Null where the folder has no module, or where it cannot be loaded: then `fault` has the loader's
// words.
static void* load_from(const std::string& folder, std::string& path, std::string& fault) {
  path = folder + FILE_NAME;
  if (access(path.c_str(), F_OK) != 0) return nullptr;
  void* module = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (module == nullptr) fault = dlerror();
  return module;
}

static const postgres_module* refuse(const std::string& fault, problem& why) {
  why.code = TAV_ERR_BAD_CONF;
  why.sentence = join({"The dictionary is on a PostgreSQL server, and the module for that, ",
                       FILE_NAME, ", ", fault, "; install it beside the program or in '",
                       TAV_MODULE_FOLDER, "', or use sqlite:PATH."});
  return nullptr;
}

const postgres_module* load_postgres(problem& why) {
  const std::string beside = program_folder();
  std::string path;
  std::string fault;
  for (const std::string& folder :
       {beside, beside + TAV_MODULE_FOLDER_FROM_PROGRAMS "/", std::string(TAV_MODULE_FOLDER "/")}) {
    void* module = load_from(folder, path, fault);
    if (module == nullptr && fault.empty()) continue;
    if (module == nullptr) return refuse(join({"cannot be loaded (", fault, ")"}), why);
    const auto entry = reinterpret_cast<postgres_entry>(dlsym(module, POSTGRES_ENTRY));
    if (entry != nullptr && std::strcmp(entry()->build, TAV_BUILD) == 0) return entry();
    return refuse(join({"is another version's (", quoted(path), ")"}), why);
  }
  return refuse("is not installed", why);
}

}  // namespace dm
