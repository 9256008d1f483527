// Writing rows. A key in the batch begins with a letter for its table: f, c or t.
#include <algorithm>

#include "dd/database_number.h"
#include "dm/folded.h"
#include "dm/postgres/result_rows.h"
#include "dm/schema.h"

namespace dm {

bool postgres_add_database(store* base, uint64_t number, int64_t& id, problem& why) {
  static constexpr char INSERT[] =
      "INSERT INTO dd_databases (id, number, counter)"
      " SELECT coalesce(max(id), 0) + 1, $1, 0 FROM dd_databases RETURNING id";
  postgres_rows rows(postgres_of(base), INSERT, parameters(dd_database_text(number)), false, why);
  const postgres_rows::outcome outcome = rows.next();
  if (outcome == postgres_rows::END) {
    return postgres_refuse(postgres_of(base), TAV_ERR_STORAGE, ROWS_SWALLOWED, why);
  }
  if (outcome != postgres_rows::ROW) return false;
  id = rows.integer(0);
  return true;
}

bool postgres_set_counter(store* base, int64_t database, int64_t counter, problem& why) {
  return change_rows(postgres_of(base), "UPDATE dd_databases SET counter = $2 WHERE id = $1",
                     parameters(database, counter), 1, why);
}

static std::string field_key(int64_t database, int32_t number) {
  return join({"f", std::to_string(database), ".", std::to_string(number)});
}

bool postgres_add_fields(store* base, int64_t database, std::span<const field_row> rows,
                         problem& why) {
  return std::all_of(rows.begin(), rows.end(), [&](const field_row& row) {
    const std::string key = folded(row.name);
    return put_change(
        postgres_of(base), change::ADD_FIELD, field_key(database, row.number),
        {database, key.c_str(), row.name, row.number, row.type, row.descr, row.flags, row.stamp},
        why);
  });
}

bool postgres_set_description(store* base, int64_t database, const field_row& row, problem& why) {
  return put_change(postgres_of(base), change::DESCRIBE_FIELD, field_key(database, row.number),
                    {database, row.number, row.descr, row.stamp}, why);
}

bool postgres_delete_field(store* base, int64_t database, int32_t number, problem& why) {
  return put_change(postgres_of(base), change::DELETE_FIELD, field_key(database, number),
                    {database, number}, why);
}

// The next free class id. Counting here is safe because there is one writer at a time.
static bool new_class_id(postgres_store& store, int64_t& id, problem& why) {
  if (store.last_class == 0) {
    postgres_rows rows(store, "SELECT coalesce(max(id), 0) FROM dd_classes", parameters(), false,
                       why);
    if (rows.next() != postgres_rows::ROW) return false;
    store.last_class = rows.integer(0);
  }
  if (store.last_class >= HIGHEST_ROW_ID) {
    return postgres_damaged(store, "the highest row id of a class is damaged", why);
  }
  id = ++store.last_class;
  return true;
}

static std::string class_key(int64_t id) {
  return join({"c", std::to_string(id)});
}

bool postgres_put_class(store* base, int64_t database, class_row& row, problem& why) {
  postgres_store& store = postgres_of(base);
  const bool is_new = row.id == 0;
  if (is_new && !new_class_id(store, row.id, why)) return false;
  note_kept(store, database, row);
  if (!is_new) {
    return put_change(store, change::REPLACE_CLASS, class_key(row.id),
                      {row.id, row.stamp, row.definition}, why);
  }
  return put_change(store, change::ADD_CLASS, class_key(row.id),
                    {row.id, database, row.key, row.name, row.stamp, row.definition}, why);
}

bool postgres_delete_class(store* base, int64_t database, const class_row& row, problem& why) {
  postgres_store& store = postgres_of(base);
  if (store.kept.database == database) store.kept.rows.erase(row.key);
  return put_change(store, change::DELETE_CLASS, class_key(row.id), {row.id}, why);
}

static std::string table_key(int64_t database, const std::string& folded_name) {
  return join({"t", std::to_string(database), ".", folded_name});
}

bool postgres_add_table(store* base, int64_t database, const table_row& row, problem& why) {
  return put_change(postgres_of(base), change::ADD_TABLE, table_key(database, row.key),
                    {database, row.key, row.name, row.class_id}, why);
}

bool postgres_delete_table(store* base, int64_t database, const char* name, problem& why) {
  const std::string key = folded(name);
  return put_change(postgres_of(base), change::DELETE_TABLE, table_key(database, key),
                    {database, key.c_str()}, why);
}

// A row that is left of the database breaks a reference: then nothing is deleted.
bool postgres_delete_database(store* base, int64_t database, problem& why) {
  static constexpr const char* ROWS[] = {"DELETE FROM dd_tables WHERE database = $1",
                                         "DELETE FROM dd_classes WHERE database = $1",
                                         "DELETE FROM dd_fields WHERE database = $1"};
  postgres_store& store = postgres_of(base);
  const parameters with(database);
  store.kept = {};
  if (!flush(store, why)) return false;
  for (const char* rows : ROWS) {
    if (execute(store, rows, with, why) == nullptr) return false;
  }
  return change_rows(store, "DELETE FROM dd_databases WHERE id = $1", with, 1, why);
}

}  // namespace dm
