#include "tests/faults/bench.h"

#include <sqlite3.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>

int tav_deploy_main(int argc, char** argv);  // the tool's main

const fault_row VERIFY = {"verify", {"verify", "new.def"}, true, false, false, 1};
// Its one field is defined twice, so that the trial has nothing to delete at its end.
const fault_row VERIFY_FIELDS = {"verify_fields", {"verify", "twice.def"}, true, false, false, 0};
const fault_row CREATE = {"create", {"create", "base.def"}, false, true, false, 0};
const fault_row REPLACE = {"replace", {"replace", "new.def"}, true, true, false, 0};
const fault_row FIELD = {"field", {"field", "-c"}, true, false, true, 0};
// One of the names is not there, so that every name is looked up.
const fault_row FIELD_NAMES = {"field_names", {"field", "F1", "NONE"}, true, false, true, 1};
const fault_row CLASS = {"class", {"class", "-nmcp", "-s", "/c"}, true, false, true, 0};

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
  place.save();
  states.push_back(left = content());
  if (row.commits) {
    put_definitions(place, true);
    run({});
    states.push_back(content());
    EXPECT_EQ(place.run({"dict", "check"}).out, "No findings.\n");
    put_definitions(place, false);
  }
  healthy = run({});
  if (row.commits) states.push_back(left);
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
// it is done once for each amount.
static std::set<size_t> without_leak;

static int run_tool(int argc, char** argv) {
  if (plan().failing_allocation == 0) {
    put_disk_under_plan();
  } else {
    put_memory_under_plan();
  }
  const size_t before = allocated();
  const int status = tav_deploy_main(argc, argv);
  std::fflush(nullptr);
  plan().left_allocated = allocated() - before;
  if (without_leak.count(plan().left_allocated) != 0) _exit(status);
  return status;
}

run_result fault_bench::run(const fault_plan& faults) {
  if (left != states[0]) place.restore();
  for (const char* log : {"tav_deploy.tavlog", "dm.tavlog", "cm.tavlog"}) {
    std::filesystem::remove(place.path(log));
  }
  plan() = faults;
  run_options options;
  options.inside = run_tool;
  run_result result = place.run(GetParam().words, options);
  if (result.exit_status <= 1) without_leak.insert(plan().left_allocated);
  left = content();
  return result;
}

static std::string query(sqlite3* db, const char* sql) {
  std::string text;
  const auto take = [](void* to, int count, char** values, char**) {
    auto& out = *static_cast<std::string*>(to);
    for (int i = 0; i < count; ++i) out += (values[i] != nullptr ? values[i] : "NULL"), out += '|';
    out += '\n';
    return 0;
  };
  EXPECT_EQ(sqlite3_exec(db, sql, take, &text, nullptr), SQLITE_OK) << sqlite3_errmsg(db);
  return text;
}

static sqlite3* open_file(const workshop& place) {
  sqlite3* db = nullptr;
  EXPECT_EQ(
      sqlite3_open_v2(place.path("dictionary.db").c_str(), &db, SQLITE_OPEN_READWRITE, nullptr),
      SQLITE_OK);
  return db;
}

std::string fault_bench::content() const {
  sqlite3* db = open_file(place);
  EXPECT_EQ(query(db, "BEGIN IMMEDIATE; ROLLBACK"), "");
  EXPECT_EQ(query(db, "PRAGMA integrity_check; PRAGMA foreign_key_check"), "ok|\n");
  const std::string text = query(db,
                                 "SELECT * FROM dd_databases; SELECT * FROM dd_fields;"
                                 "SELECT * FROM dd_classes; SELECT * FROM dd_tables;"
                                 "SELECT number, deployment, changes, kind FROM dd_journal;"
                                 "SELECT record, part, content FROM dd_journal_changes");
  sqlite3_close(db);
  return text;
}

std::string fault_bench::answer(const char* sql) const {
  sqlite3* db = open_file(place);
  std::string text = query(db, sql);
  sqlite3_close(db);
  std::erase(text, '|');
  std::replace(text.begin(), text.end(), '\n', ' ');
  return text;
}

run_result fault_bench::run_inside(int (*inside)(int, char**), const fault_plan& faults) {
  place.restore();
  plan() = faults;
  run_options options;
  options.inside = inside;
  return place.run({"inside"}, options);
}

int fault_bench::at_every_disk_call(const one_run& run_one, const one_look& look) {
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
      const run_result result = run_one(faults);
      if (plan().disk_calls < n) break;
      look(result, row.fault);
    }
  }
  return runs;
}
