// Adds all fields with one INSERT, which reads them from a virtual table. An INSERT for each would
// open the indexes and look up the database again for every row.
#include <algorithm>
#include <cstring>

#include "dd/fold.h"
#include "dm/sqlite/handle.h"

namespace dm {

static sqlite_new_fields& fields_of(sqlite3_vtab_cursor* cursor) {
  return *static_cast<sqlite_new_fields*>(cursor->pVtab);
}

// The callbacks of the virtual table. Table and cursor are members of the store, so that connect
// and open make nothing, and disconnect and close free nothing.
static int connect(sqlite3* db, void* fields, int, const char* const*, sqlite3_vtab** table,
                   char**) {
  *table = static_cast<sqlite_new_fields*>(fields);
  return sqlite3_declare_vtab(db,
                              "CREATE TABLE t (folded, name, number, type, descr, flags, stamp)");
}

static int disconnect(sqlite3_vtab*) {
  return SQLITE_OK;
}

static int plan(sqlite3_vtab*, sqlite3_index_info*) {
  return SQLITE_OK;
}

static int open(sqlite3_vtab* table, sqlite3_vtab_cursor** cursor) {
  *cursor = &static_cast<sqlite_new_fields*>(table)->cursor;
  return SQLITE_OK;
}

static int close(sqlite3_vtab_cursor*) {
  return SQLITE_OK;
}

static int begin(sqlite3_vtab_cursor* cursor, int, const char*, int, sqlite3_value**) {
  fields_of(cursor).at = 0;
  return SQLITE_OK;
}

static int next(sqlite3_vtab_cursor* cursor) {
  ++fields_of(cursor).at;
  return SQLITE_OK;
}

static int is_at_end(sqlite3_vtab_cursor* cursor) {
  const sqlite_new_fields& fields = fields_of(cursor);
  return fields.at == fields.rows.size() ? 1 : 0;
}

static int row_id(sqlite3_vtab_cursor* cursor, sqlite3_int64* id) {
  *id = static_cast<sqlite3_int64>(fields_of(cursor).at);
  return SQLITE_OK;
}

// Texts are copied with the engine's own allocator: it reports failure by a code, and no exception
// may pass through the engine.
static int give_key(sqlite3_context* context, const char* name) {
  const size_t size = std::strlen(name);
  auto* key = static_cast<char*>(sqlite3_malloc64(size + 1));
  if (key == nullptr) return SQLITE_NOMEM;
  std::transform(name, name + size + 1, key, [](char c) { return static_cast<char>(dd_fold(c)); });
  sqlite3_result_text64(context, key, size, sqlite3_free, SQLITE_UTF8);
  return SQLITE_OK;
}

static int column(sqlite3_vtab_cursor* cursor, sqlite3_context* context, int number) {
  const sqlite_new_fields& fields = fields_of(cursor);
  const field_row& row = fields.rows[fields.at];
  switch (number) {
    case 0:
      return give_key(context, row.name);
    case 1:
      return sqlite3_result_text(context, row.name, -1, SQLITE_STATIC), SQLITE_OK;
    case 2:
      return sqlite3_result_int(context, row.number), SQLITE_OK;
    case 3:
      return sqlite3_result_int(context, row.type), SQLITE_OK;
    case 4:
      return sqlite3_result_text(context, row.descr, -1, SQLITE_STATIC), SQLITE_OK;
    case 5:
      return sqlite3_result_int(context, row.flags), SQLITE_OK;
    default:
      return sqlite3_result_int64(context, row.stamp), SQLITE_OK;
  }
}

static constexpr sqlite3_module NEW_FIELDS = [] {
  sqlite3_module calls{};
  calls.xConnect = connect;
  calls.xDisconnect = disconnect;
  calls.xBestIndex = plan;
  calls.xOpen = open;
  calls.xClose = close;
  calls.xFilter = begin;
  calls.xNext = next;
  calls.xEof = is_at_end;
  calls.xColumn = column;
  calls.xRowid = row_id;
  return calls;
}();

bool sqlite_add_fields(store* base, int64_t database, std::span<const field_row> rows,
                       problem& why) {
  sqlite_store& store = sqlite_of(base);
  if (store.prepared[INSERT_FIELDS] == nullptr) {
    const int result = sqlite3_create_module(store.db, NEW_FIELDS_NAME, &NEW_FIELDS, &store.added);
    if (result != SQLITE_OK) return sqlite_failed(store, result, why);
  }
  store.added.rows = rows;
  sqlite_use use(store, INSERT_FIELDS);
  return use.bind(database).write(static_cast<int64_t>(rows.size()), why);
}

}  // namespace dm
