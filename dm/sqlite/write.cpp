// Writing rows.
#include "dd/database_number.h"
#include "dm/folded.h"
#include "dm/sqlite/handle.h"

namespace dm {

bool sqlite_add_database(store* base, uint64_t number, int64_t& id, problem& why) {
  const std::string text = dd_database_text(number);
  sqlite_use use(sqlite_of(base), INSERT_DATABASE);
  if (!use.bind(text).write(1, why)) return false;
  id = sqlite3_last_insert_rowid(sqlite_of(base).db);
  return true;
}

bool sqlite_set_counter(store* base, int64_t database, int64_t counter, problem& why) {
  sqlite_use use(sqlite_of(base), UPDATE_COUNTER);
  return use.bind(database).bind(counter).write(1, why);
}

bool sqlite_set_description(store* base, int64_t database, const field_row& row, problem& why) {
  sqlite_use use(sqlite_of(base), UPDATE_DESCRIPTION);
  use.bind(database).bind(static_cast<int64_t>(row.number)).bind(row.descr).bind(row.stamp);
  return use.write(1, why);
}

// Deletes the row of that key. A row that does not exist counts as deleted: a list may name it
// twice, a damaged dictionary may lack it. A row that still exists afterwards is a failure.
template <class Key>
static bool delete_row(store* base, statement deletion, query look_up, int64_t database,
                       const Key& key, problem& why) {
  sqlite_store& store = sqlite_of(base);
  if (!sqlite_use(store, deletion).bind(database).bind(key).run(why)) return false;
  if (sqlite3_changes64(store.db) == 1) return true;
  sqlite_use use(store, look_up);
  const int result = use.bind(database).bind(key).step();
  if (result == SQLITE_DONE) return true;
  return result == SQLITE_ROW ? sqlite_swallowed(store, why) : sqlite_failed(store, result, why);
}

bool sqlite_delete_field(store* base, int64_t database, int32_t number, problem& why) {
  return delete_row(base, DELETE_FIELD, SELECT_FIELD_NUMBERED, database, int64_t{number}, why);
}

bool sqlite_put_class(store* base, int64_t database, class_row& row, problem& why) {
  if (row.id != 0) {
    sqlite_use use(sqlite_of(base), UPDATE_CLASS);
    return use.bind(row.id).bind(row.stamp).bind(row.definition).write(1, why);
  }
  sqlite_use use(sqlite_of(base), INSERT_CLASS);
  use.bind(database).bind(row.key).bind(row.name).bind(row.stamp).bind(row.definition);
  if (!use.write(1, why)) return false;
  row.id = sqlite3_last_insert_rowid(sqlite_of(base).db);
  return true;
}

bool sqlite_delete_class(store* base, int64_t, const class_row& row, problem& why) {
  return sqlite_use(sqlite_of(base), DELETE_CLASS).bind(row.id).write(1, why);
}

bool sqlite_add_table(store* base, int64_t database, const table_row& row, problem& why) {
  sqlite_use use(sqlite_of(base), INSERT_TABLE);
  return use.bind(database).bind(row.key).bind(row.name).bind(row.class_id).write(1, why);
}

bool sqlite_delete_table(store* base, int64_t database, const char* name, problem& why) {
  return delete_row(base, DELETE_TABLE, SELECT_TABLE_NAMED, database, folded(name), why);
}

// A row that is left of the database breaks a reference: then nothing is deleted.
bool sqlite_delete_database(store* base, int64_t database, problem& why) {
  sqlite_store& store = sqlite_of(base);
  const std::string number = std::to_string(database);
  const std::string sql = join({"DELETE FROM dd_tables WHERE database = ", number,
                                "; DELETE FROM dd_classes WHERE database = ", number,
                                "; DELETE FROM dd_fields WHERE database = ", number,
                                "; DELETE FROM dd_databases WHERE id = ", number});
  if (!sqlite_run(store, sql.c_str(), why)) return false;
  return sqlite3_changes64(store.db) == 1 || sqlite_swallowed(store, why);
}

}  // namespace dm
