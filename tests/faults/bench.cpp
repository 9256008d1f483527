#include "tests/faults/bench.h"

#include <sqlite3.h>
#include <sys/mman.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <new>
#include <set>
#include <sstream>

int inside_main(int argc, char** argv);  // the tool's main, or what stands for it

fault_plan& plan() {
  static auto* shared = new (mmap(nullptr, sizeof(fault_plan), PROT_READ | PROT_WRITE,
                                  MAP_SHARED | MAP_ANONYMOUS, -1, 0)) fault_plan;
  return *shared;
}

const fault_row VERIFY = {.mode = "verify", .words = {"verify", "new.def"}, .exit_status = 1};
// Its one field is defined twice, so that the trial has nothing to delete at its end.
const fault_row VERIFY_FIELDS = {.mode = "verify_fields", .words = {"verify", "twice.def"}};
const fault_row CREATE = {
    .mode = "create", .words = {"create", "base.def"}, .commits = 2, .has_base = false};
const fault_row REPLACE = {.mode = "replace", .words = {"replace", "new.def"}, .commits = 2};
const fault_row FIELD = {.mode = "field", .words = {"field", "-c"}, .is_export = true};
// One of the names is not there, so that every name is looked up.
const fault_row FIELD_NAMES = {
    .mode = "field_names", .words = {"field", "F1", "NONE"}, .is_export = true, .exit_status = 1};
const fault_row CLASS = {
    .mode = "class", .words = {"class", "-nmcp", "-s", "/c"}, .is_export = true};

size_t commits_told(const run_result& result) {
  return (result.out.find("Fields committed successfully!\n") != std::string::npos ? 1u : 0u) +
         (result.out.find("Classes committed successfully!\n") != std::string::npos ? 1u : 0u);
}

std::string fault_data(const std::string& name) {
  std::ostringstream text;
  text << std::ifstream(std::string(TAV_FAULT_DATA) + "/" + name + ".txt").rdbuf();
  EXPECT_NE(text.str(), "") << name;
  return text.str();
}

static void put_definitions(const workshop& place, bool fields_only) {
  for (const std::string name : {"base", "new"}) {
    place.write(name + ".def",
                fault_data(name + "_fields") + (fields_only ? "" : fault_data(name + "_classes")));
  }
}

fault_bench::fault_bench() {
  const fault_row& row = GetParam();
  put_definitions(place, false);
  place.write("twice.def", "STRING F5 { ID = 30005; }\nSTRING F5 { ID = 30005; }\n");
  if (row.has_base) place.run({"create", "base.def"});
  for (const auto& words : row.prepared_by) EXPECT_LE(place.run(words).exit_status, 1) << words[1];
  query(row.sql);
  place.save();
  states.push_back(left = content());
  if (row.commits == 2) {
    put_definitions(place, true);
    run({});
    states.push_back(content());
    EXPECT_EQ(place.run({"dict", "check"}).out, "No findings.\n");
    put_definitions(place, false);
  }
  healthy = run({});
  if (row.commits > 0) states.push_back(left);
  EXPECT_EQ(healthy.exit_status, row.exit_status) << healthy.err;
  EXPECT_EQ(left, states.back());
  EXPECT_EQ(place.run({"dict", "check"}).out, "No findings.\n");
}

#ifdef __SANITIZE_ADDRESS__
extern "C" size_t __sanitizer_get_current_allocated_bytes();
extern "C" const char* __asan_default_options() {
  return "exitcode=99:quarantine_size_mb=1";
}
static size_t allocated() {
  return __sanitizer_get_current_allocated_bytes();
}
#else
static size_t allocated() {
  return 0;
}
#endif

// What runs left allocated in which no leak was found. Looking for leaks costs more than a run, so
// it is done once for each amount, and not for commands.
static std::set<size_t> without_leak;

static int run_program(int argc, char** argv) {
  if (plan().failing_allocation == 0) {
    put_disk_under_plan();
    put_engine_under_plan();
  } else {
    put_memory_under_plan();  // the engine's plan would take of it what the run has
  }
  const bool is_tool = argv[0] == std::string("tav_deploy");
  const size_t before = allocated();
  const int status = inside_main(argc, argv);
  std::fflush(nullptr);
  plan().left_allocated = allocated() - before;
  if (!is_tool || without_leak.count(plan().left_allocated) != 0) _exit(status);
  return status;
}

run_result fault_bench::run(const fault_plan& faults) {
  if (left != states[0]) place.restore();
  for (const char* made : {"tav_deploy.tavlog", "dm.tavlog", "cm.tavlog", "copy.db"}) {
    std::filesystem::remove(place.path(made));
  }
  plan() = faults;
  run_options options;
  options.inside = run_program;
  run_result result = place.run(GetParam().words, options);
  if (result.exit_status <= 2) without_leak.insert(plan().left_allocated);
  left = content();
  return result;
}

std::string fault_bench::query(const char* sql) const {
  if (on_server()) return place.ask_server(sql);
  sqlite3* db = nullptr;
  std::string text;
  const auto take = [](void* to, int count, char** values, char**) {
    auto& out = *static_cast<std::string*>(to);
    for (int i = 0; i < count; ++i) out += (values[i] != nullptr ? values[i] : "NULL"), out += '|';
    out += '\n';
    return 0;
  };
  EXPECT_EQ(
      sqlite3_open_v2(place.path("dictionary.db").c_str(), &db, SQLITE_OPEN_READWRITE, nullptr),
      SQLITE_OK);
  EXPECT_EQ(sqlite3_exec(db, sql, take, &text, nullptr), SQLITE_OK) << sqlite3_errmsg(db);
  sqlite3_close(db);
  return text;
}

std::string fault_bench::content() const {
  if (on_server()) {
    std::string sql;
    for (const char* rows :
         {"x.* FROM dd_databases", "x.* FROM dd_fields", "x.* FROM dd_classes",
          "x.* FROM dd_tables", "number, deployment, changes, kind FROM dd_journal",
          "record, part, content FROM dd_journal_changes"}) {
      sql += std::string("SELECT ") + rows + " x ORDER BY x::TEXT COLLATE \"C\";";
    }
    return query(sql.c_str());
  }
  const std::string text = query(
      "BEGIN IMMEDIATE; ROLLBACK; PRAGMA integrity_check; PRAGMA foreign_key_check;"
      "PRAGMA user_version; SELECT type, name FROM sqlite_schema; SELECT * FROM dd_databases;"
      "SELECT * FROM dd_fields; SELECT * FROM dd_classes; SELECT * FROM dd_tables");
  EXPECT_EQ(text.substr(0, 4), "ok|\n");
  if (text.find("table|dd_journal|") == text.npos) return text;  // an older version
  return text + query(
                    "SELECT number, deployment, changes, kind FROM dd_journal;"
                    "SELECT record, part, content FROM dd_journal_changes");
}

void fault_bench::on_every_way_to_engine(const std::function<void(const run_result&)>& look) {
  run({});
  const std::vector<long> calls(plan().ways_to_engine, plan().ways_to_engine + plan().way_count);
  EXPECT_GE(calls.size(), 5u);
  for (const long n : calls) {
    SCOPED_TRACE("engine's call " + std::to_string(n));
    fault_plan faults;
    faults.failing_engine_call = n;
    look(run(faults));
  }
}

int fault_bench::at_every_disk_call(const one_look& look) {
  static const struct {
    const char* title;
    disk_fault fault;
  } FAULTS[] = {
      {"an I/O error", disk_fault::IO_ERROR},
      {"no room", disk_fault::FULL},
      {"half a write", disk_fault::SHORT_WRITE},
      {"broken from here on", disk_fault::BROKEN},
      {"killed", disk_fault::KILL},
      {"power lost", disk_fault::POWER_LOSS},
  };
  int runs = 0;
  for (const auto& row : FAULTS) {
    for (long n = 1;; ++n, ++runs) {
      SCOPED_TRACE(row.title + (" at call " + std::to_string(n)));
      fault_plan faults;
      faults.disk = row.fault;
      faults.failing_disk_call = n;
      const run_result result = run(faults);
      if (plan().disk_calls < n) break;
      look(result, row.fault);
    }
  }
  return runs;
}
