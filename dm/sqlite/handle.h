// The SQLite engine's own side of a store: its connection, prepared statements, errors.
#ifndef DM_SQLITE_HANDLE_H
#define DM_SQLITE_HANDLE_H

#include <sqlite3.h>
#include <sys/stat.h>

#include <array>

#include "dm/queries.h"
#include "dm/sqlite/dictionary_file.h"

namespace dm {

// The statements that write, numbered on from the queries, which all engines share (dm/queries.h).
enum statement {
  INSERT_DATABASE = QUERIES,
  UPDATE_COUNTER,
  INSERT_FIELDS,
  UPDATE_DESCRIPTION,
  DELETE_FIELD,
  INSERT_CLASS,
  UPDATE_CLASS,
  DELETE_CLASS,
  INSERT_TABLE,
  DELETE_TABLE,
  INSERT_IDENTITY,
  INSERT_RECORD,
  INSERT_PART,
  STATEMENTS  // their number
};

// The field rows to be added, as a virtual table: the engine reads them like a table, but only this
// connection has it, and nothing of it is in the file.
inline constexpr char NEW_FIELDS_NAME[] = "dd_fields_to_add";
struct sqlite_new_fields : sqlite3_vtab {
  std::span<const field_row> rows;
  size_t at = 0;
  sqlite3_vtab_cursor cursor{};
};

struct sqlite_store : store {
  std::string path;       // as it was given
  std::string file;       // the same with all links followed; -wal and -shm stand beside this one
  struct stat opened {};  // of the file when it was opened
  sqlite3* db = nullptr;
  std::array<sqlite3_stmt*, STATEMENTS> prepared{};
  sqlite_new_fields added{};
  int version = 0;
  int milliseconds_left = 0;  // how long this connection may still wait for locks of others
  bool is_onlooker = false;   // this user may not write the file or its folder
  bool is_copy = false;       // the connection reads a copy of the file in memory
  bool has_begun = false;     // a snapshot was begun on it
  bool may_upgrade = false;   // it may be written although its schema version is an older one
};

inline sqlite_store& sqlite_of(store* base) {
  return *static_cast<sqlite_store*>(base);
}

// The text of a row's column; null only for NULL. Throws std::bad_alloc where memory ran out.
const char* sqlite_text(sqlite3_stmt* row, int column);

// A prepared statement while it is used. Prepared at its first use; the destructor resets it for
// the next.
class sqlite_use {
 public:
  sqlite_use(sqlite_store& store, int which);  // a query or a statement
  ~sqlite_use();
  sqlite_use(const sqlite_use&) = delete;
  sqlite_use& operator=(const sqlite_use&) = delete;

  // Binds the next parameter; texts must outlive the use, a null text is NULL.
  sqlite_use& bind(int64_t value);
  sqlite_use& bind(const char* text);
  sqlite_use& bind(const std::string& text);

  // SQLITE_ROW, SQLITE_DONE or an error's result code.
  int step();
  // Runs a statement that gives no rows.
  bool run(problem& why);
  // The same for a statement that must write exactly `rows` rows.
  bool write(int64_t rows, problem& why);

  int count() const { return sqlite3_column_count(statement_); }
  int64_t integer(int column) const { return sqlite3_column_int64(statement_, column); }
  // The text of a column; null for NULL.
  const char* text(int column) const { return sqlite_text(statement_, column); }

 private:
  sqlite_store& store_;
  sqlite3_stmt* statement_ = nullptr;
  int parameter_ = 0;
  int result_ = SQLITE_OK;
};

// Turns the engine's result code into a problem; gives false. The only place that does.
bool sqlite_failed(const sqlite_store& store, int result, problem& why);

// The problem that a statement wrote fewer rows than it should, as a
// trigger can cause; gives false.
bool sqlite_swallowed(const sqlite_store& store, problem& why);

// The busy handler: waits, longer with each try; gives 0 when milliseconds_left is used up.
int sqlite_wait(void* store, int tries);

// Runs a query of our own that gives one number; gives the engine's result code.
int sqlite_number(sqlite_store& store, const char* query, int64_t& number);

// Runs SQL text that gives no rows.
bool sqlite_run(sqlite_store& store, const char* sql, problem& why);

// The calls of the store's record (SQLITE_CALLS, in open.cpp) that other files define.
bool sqlite_databases(store*, visitor<database_row>, problem&);
bool sqlite_fields(store*, int64_t, const choice&, visitor<field_row>, problem&);
bool sqlite_classes(store*, int64_t, const choice&, visitor<class_row>, problem&);
bool sqlite_tables(store*, int64_t, const choice&, visitor<table_row>, problem&);
bool sqlite_count(store*, int64_t, counted, int64_t&, problem&);
bool sqlite_size(store*, int64_t&, problem&);
bool sqlite_integrity(store*, visitor<std::string_view>, problem&);
bool sqlite_add_database(store*, uint64_t, int64_t&, problem&);
bool sqlite_set_counter(store*, int64_t, int64_t, problem&);
bool sqlite_add_fields(store*, int64_t, std::span<const field_row>, problem&);
bool sqlite_set_description(store*, int64_t, const field_row&, problem&);
bool sqlite_delete_field(store*, int64_t, int32_t, problem&);
bool sqlite_put_class(store*, int64_t, class_row&, problem&);
bool sqlite_delete_class(store*, int64_t, const class_row&, problem&);
bool sqlite_add_table(store*, int64_t, const table_row&, problem&);
bool sqlite_delete_table(store*, int64_t, const char*, problem&);
bool sqlite_delete_database(store*, int64_t, problem&);
bool sqlite_identity(store*, std::string&, problem&);
bool sqlite_set_identity(store*, const std::string&, problem&);
bool sqlite_journal_end(store*, journal_head&, problem&);
bool sqlite_journal(store*, const journal_range&, visitor<journal_record>, problem&);
bool sqlite_journal_parts(store*, const journal_range&, visitor<journal_part>, problem&);
bool sqlite_add_record(store*, const journal_record&, problem&);
bool sqlite_add_part(store*, const journal_part&, problem&);
bool sqlite_forget_records(store*, int64_t, problem&);
bool sqlite_upgrade(store*, problem&);

extern const store_calls SQLITE_CALLS;

}  // namespace dm

#endif
