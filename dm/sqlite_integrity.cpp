// The engine's own test of a dictionary file.
#include "dm/schema.h"
#include "dm/sqlite_handle.h"

namespace dm {

// Runs a pragma and gives each row to `tell`.
template <class Tell>
static bool run_test(sqlite_store& store, const char* pragma, problem& why, Tell tell) {
  sqlite3_stmt* statement = nullptr;
  int result = sqlite3_prepare_v2(store.db, pragma, -1, &statement, nullptr);
  while (result == SQLITE_OK || result == SQLITE_ROW) {
    result = sqlite3_step(statement);
    if (result == SQLITE_ROW && !tell(statement)) result = SQLITE_DONE;
  }
  sqlite3_finalize(statement);
  return result == SQLITE_DONE || sqlite_failed(store, result, why);
}

static std::string column(sqlite3_stmt* statement, int number) {
  const unsigned char* text = sqlite3_column_text(statement, number);
  return text != nullptr ? reinterpret_cast<const char*>(text) : "";
}

bool sqlite_integrity(store* base, visitor<std::string_view> visitor, problem& why) {
  sqlite_store& store = sqlite_of(base);
  const bool read = run_test(store, "PRAGMA integrity_check", why, [&](sqlite3_stmt* row) {
    const std::string text = column(row, 0);
    return text == "ok" || visitor.call(visitor.context, text);
  });
  return read && run_test(store, "PRAGMA foreign_key_check", why, [&](sqlite3_stmt* row) {
           return visitor.call(visitor.context, orphan(column(row, 0), column(row, 2)));
         });
}

}  // namespace dm
