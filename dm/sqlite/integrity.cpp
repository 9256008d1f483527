// The engine's own test of a dictionary file.
#include <map>
#include <memory>

#include "dm/schema.h"
#include "dm/sqlite/handle.h"
#include "dm/sqlite/tables.h"

namespace dm {

// Runs a query and gives each row to `tell`.
template <class Tell>
static bool run_test(sqlite_store& store, const char* query, problem& why, Tell tell) {
  sqlite3_stmt* statement = nullptr;
  int result = sqlite3_prepare_v2(store.db, query, -1, &statement, nullptr);
  const std::unique_ptr<sqlite3_stmt, decltype(&sqlite3_finalize)> owner(statement,
                                                                         sqlite3_finalize);
  while (result == SQLITE_OK || result == SQLITE_ROW) {
    result = sqlite3_step(statement);
    if (result == SQLITE_ROW && !tell(statement)) result = SQLITE_DONE;
  }
  return result == SQLITE_DONE || sqlite_failed(store, result, why);
}

static std::string column(sqlite3_stmt* statement, int number) {
  const char* text = sqlite_text(statement, number);
  return text != nullptr ? text : "";
}

// The SQL of each table, index, trigger and view; the key is its kind and name.
using schema = std::map<std::string, std::string>;

static bool read_schema(sqlite_store& store, schema& found, problem& why) {
  return run_test(
      store, "SELECT type || ' ' || name, sql FROM sqlite_schema", why,
      [&](sqlite3_stmt* row) { return found.emplace(column(row, 0), column(row, 1)), true; });
}

static bool make_schema(int version, schema& expected, problem& why) {
  sqlite_store fresh;
  const int result = sqlite3_open(":memory:", &fresh.db);
  const std::unique_ptr<sqlite3, decltype(&sqlite3_close)> owner(fresh.db, sqlite3_close);
  if (result != SQLITE_OK) return sqlite_failed(fresh, result, why);
  for (int step = 1; step <= version; ++step) {
    if (!sqlite_run(fresh, schema_step(step).c_str(), why)) return false;
  }
  return read_schema(fresh, expected, why);
}

// Tables and views that an administrator added do no harm. A trigger or an index could act on ours.
static bool is_harmless(const std::string& kind_and_name) {
  return kind_and_name.rfind("table ", 0) == 0 || kind_and_name.rfind("view ", 0) == 0;
}

static bool check_schema(sqlite_store& store, visitor<std::string_view> visitor, problem& why) {
  schema expected;
  schema found;
  if (!make_schema(store.version, expected, why) || !read_schema(store, found, why)) return false;
  for (const auto& [name, sql] : expected) {
    const auto at = found.find(name);
    const bool is_there = at != found.end();
    if (is_there && at->second == sql) continue;
    const char* fault = is_there ? " is not as this program makes it." : " is missing.";
    visitor.call(visitor.context, join({"The ", name, fault}));
  }
  for (const auto& [name, sql] : found) {
    if (expected.count(name) != 0 || is_harmless(name)) continue;
    visitor.call(visitor.context, join({"The ", name, " is none of a dictionary's."}));
  }
  return true;
}

// Each query gives a sentence for every row with a value that this program cannot use or would
// misread: it reads numbers as 32 bits, and texts up to a NUL byte.
static constexpr const char* ROW_TESTS[] = {
    "SELECT 'Database ' || quote(number) || ' has no number of the form N.N.N.N.' FROM dd_databases"
    " WHERE number NOT GLOB '[0-9]*.[0-9]*.[0-9]*.[0-9]*' OR number GLOB '*[^0-9.]*'",
    "SELECT 'Field ' || quote(name) || ' has a number, a type or flags out of range.'"
    " FROM dd_fields WHERE max(abs(number), abs(type), abs(flags)) >= 1 << 31",
    "SELECT 'Field ' || number || ' holds a NUL byte.' FROM dd_fields"
    " WHERE instr(CAST(name || ifnull(descr, '') AS BLOB), x'00')",
    "SELECT 'Class ' || quote(name) || ' holds a NUL byte.' FROM dd_classes"
    " WHERE instr(CAST(name || definition AS BLOB), x'00')",
};

bool sqlite_integrity(store* base, visitor<std::string_view> visitor, problem& why) {
  sqlite_store& store = sqlite_of(base);
  const auto tell = [&](sqlite3_stmt* row) {
    const std::string text = column(row, 0);
    return text == "ok" || visitor.call(visitor.context, text);
  };
  const auto tell_row = [&](sqlite3_stmt* row) {
    return visitor.call(visitor.context, orphan(column(row, 0), column(row, 2)));
  };
  if (!run_test(store, "PRAGMA integrity_check", why, tell)) return false;
  if (!check_schema(store, visitor, why)) return false;
  if (!run_test(store, "PRAGMA foreign_key_check", why, tell_row)) return false;
  for (const char* test : ROW_TESTS) {
    if (!run_test(store, test, why, tell)) return false;
  }
  return true;
}

}  // namespace dm
