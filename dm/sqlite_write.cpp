// Writing rows.
#include "dm/database_number.h"
#include "dm/folded.h"
#include "dm/sqlite_handle.h"

namespace dm {

bool sqlite_add_database(store* base, uint64_t number, int64_t& id, problem& why) {
  const std::string text = database_text(number);
  sqlite_use use(sqlite_of(base), INSERT_DATABASE);
  if (!use.bind(text).run(why)) return false;
  id = sqlite3_last_insert_rowid(sqlite_of(base).db);
  return true;
}

bool sqlite_set_counter(store* base, int64_t database, int64_t counter, problem& why) {
  sqlite_use use(sqlite_of(base), UPDATE_COUNTER);
  return use.bind(database).bind(counter).run(why);
}

bool sqlite_set_description(store* base, int64_t database, const field_row& row, problem& why) {
  sqlite_use use(sqlite_of(base), UPDATE_DESCRIPTION);
  use.bind(database).bind(static_cast<int64_t>(row.number)).bind(row.descr).bind(row.stamp);
  return use.run(why);
}

bool sqlite_delete_field(store* base, int64_t database, int32_t number, problem& why) {
  sqlite_use use(sqlite_of(base), DELETE_FIELD);
  return use.bind(database).bind(static_cast<int64_t>(number)).run(why);
}

bool sqlite_put_class(store* base, int64_t database, class_row& row, problem& why) {
  if (row.id != 0) {
    sqlite_use use(sqlite_of(base), UPDATE_CLASS);
    return use.bind(row.id).bind(row.stamp).bind(row.definition).run(why);
  }
  sqlite_use use(sqlite_of(base), INSERT_CLASS);
  use.bind(database).bind(row.key).bind(row.name).bind(row.stamp).bind(row.definition);
  if (!use.run(why)) return false;
  row.id = sqlite3_last_insert_rowid(sqlite_of(base).db);
  return true;
}

bool sqlite_add_table(store* base, int64_t database, const table_row& row, problem& why) {
  sqlite_use use(sqlite_of(base), INSERT_TABLE);
  return use.bind(database).bind(row.key).bind(row.name).bind(row.class_id).run(why);
}

bool sqlite_delete_table(store* base, int64_t database, const char* name, problem& why) {
  const std::string key = folded(name);
  sqlite_use use(sqlite_of(base), DELETE_TABLE);
  return use.bind(database).bind(key).run(why);
}

}  // namespace dm
