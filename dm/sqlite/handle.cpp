#include "dm/sqlite/handle.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <new>

#include "dm/schema.h"

namespace dm {

// In the order of the statements.
static constexpr const char* WRITES[] = {
    "INSERT INTO dd_databases (number, counter) VALUES (?1, 0)",
    "UPDATE dd_databases SET counter = ?2 WHERE id = ?1",
    "INSERT INTO dd_fields (database, folded, name, number, type, descr, flags, stamp)"
    " SELECT ?1, folded, name, number, type, descr, flags, stamp FROM dd_fields_to_add",
    "UPDATE dd_fields SET descr = ?3, stamp = ?4 WHERE database = ?1 AND number = ?2",
    "DELETE FROM dd_fields WHERE database = ?1 AND number = ?2",
    "INSERT INTO dd_classes (database, folded, name, stamp, definition) VALUES (?1, ?2, ?3, ?4, "
    "?5)",
    "UPDATE dd_classes SET stamp = ?2, definition = ?3 WHERE id = ?1",
    "DELETE FROM dd_classes WHERE id = ?1",
    "INSERT INTO dd_tables (database, folded, name, class) VALUES (?1, ?2, ?3, ?4)",
    "DELETE FROM dd_tables WHERE database = ?1 AND folded = ?2",
    "INSERT INTO dd_identity (is_one, identity) VALUES (1, ?1)",
    "INSERT INTO dd_journal (number, deployment, changes, time, database, kind, run, os_user,"
    " os_host, role, login, program, version, mode, called, reason, detail, previous, hash)"
    " VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?9, ?10, ?11, ?12, ?13, ?14, ?15, ?16, ?17, ?18,"
    " ?19)",
    "INSERT INTO dd_journal_changes (record, part, content) VALUES (?1, ?2, ?3)",
};
static_assert(std::size(WRITES) + QUERIES == STATEMENTS);

static int prepare(sqlite_store& store, int which, sqlite3_stmt*& prepared) {
  const std::string sql =
      which < QUERIES ? query_text(static_cast<query>(which)) : WRITES[which - QUERIES];
  return sqlite3_prepare_v3(store.db, sql.c_str(), static_cast<int>(sql.size()),
                            SQLITE_PREPARE_PERSISTENT, &prepared, nullptr);
}

const char* sqlite_text(sqlite3_stmt* row, int column) {
  const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(row, column));
  if (text == nullptr && sqlite3_errcode(sqlite3_db_handle(row)) == SQLITE_NOMEM) {
    throw std::bad_alloc();
  }
  return text;
}

sqlite_use::sqlite_use(sqlite_store& store, int which) : store_(store) {
  sqlite3_stmt*& prepared = store.prepared[static_cast<size_t>(which)];
  if (prepared == nullptr) result_ = prepare(store, which, prepared);
  statement_ = prepared;
}

sqlite_use::~sqlite_use() {
  if (statement_ == nullptr) return;
  sqlite3_reset(statement_);
  sqlite3_clear_bindings(statement_);
}

sqlite_use& sqlite_use::bind(int64_t value) {
  if (result_ == SQLITE_OK) result_ = sqlite3_bind_int64(statement_, ++parameter_, value);
  return *this;
}

sqlite_use& sqlite_use::bind(const char* text) {
  if (result_ == SQLITE_OK) {
    result_ = sqlite3_bind_text(statement_, ++parameter_, text, -1, SQLITE_STATIC);
  }
  return *this;
}

sqlite_use& sqlite_use::bind(const std::string& text) {
  return bind(text.c_str());
}

int sqlite_use::step() {
  return result_ == SQLITE_OK ? sqlite3_step(statement_) : result_;
}

bool sqlite_use::run(problem& why) {
  const int result = step();
  return result == SQLITE_DONE || sqlite_failed(store_, result, why);
}

bool sqlite_use::write(int64_t rows, problem& why) {
  if (!run(why)) return false;
  return sqlite3_changes64(store_.db) == rows || sqlite_swallowed(store_, why);
}

// What a primary result code means: our code, and what to tell the administrator.
static constexpr struct {
  int result, code;
  const char* advice;
  bool is_damage = false;
} MEANINGS[] = {
    {SQLITE_BUSY, TAV_ERR_BUSY, ANOTHER_WRITES},
    {SQLITE_LOCKED, TAV_ERR_BUSY, ANOTHER_WRITES},
    {SQLITE_READONLY, TAV_ERR_WRITE_REFUSED,
     "it cannot be written; check the permissions of the file and its folder"},
    {SQLITE_FULL, TAV_ERR_STORAGE, "the disk is full; make room and try again"},
    {SQLITE_CORRUPT, TAV_ERR_STORAGE, "the file is damaged; restore it from a backup", true},
    {SQLITE_NOTADB, TAV_ERR_STORAGE, "the file is no dictionary; check the entry 'dictionary'",
     true},
    {SQLITE_ERROR, TAV_ERR_STORAGE, IS_INCOMPLETE, true},
    {SQLITE_CANTOPEN, TAV_ERR_STORAGE,
     "it cannot be opened; check the permissions of the file and its folder"},
    {SQLITE_NOMEM, TAV_ERR_NO_MEM, "there is not enough memory"},
    {SQLITE_CONSTRAINT, TAV_ERR_STORAGE, BREAKS_RULES, true},
};

// The engine reports an I/O error where it cannot map a part of the file for lack of memory.
static bool is_no_memory(const sqlite_store& store, int result) {
  return result == SQLITE_IOERR_NOMEM ||
         ((result & 0xff) == SQLITE_IOERR && sqlite3_system_errno(store.db) == ENOMEM);
}

// The system's reason for an I/O error, such as ": Permission denied"; "" where there is none. The
// engine keeps only the last errno, so it counts only if `result` is the engine's last result too.
static std::string system_reason(const sqlite_store& store, int result) {
  const int kind = result & 0xff;
  const bool is_systems = (kind == SQLITE_IOERR || kind == SQLITE_CANTOPEN) &&
                          result != SQLITE_IOERR_SHORT_READ &&
                          sqlite3_extended_errcode(store.db) == result;
  const int number = is_systems ? sqlite3_system_errno(store.db) : 0;
  return number != 0 ? join({": ", std::strerror(number)}) : "";
}

bool sqlite_failed(const sqlite_store& store, int result, problem& why) {
  if (is_no_memory(store, result)) result = SQLITE_NOMEM;
  why.code = TAV_ERR_STORAGE;
  why.is_damage = false;
  why.detail = result;
  const char* advice = "the engine failed; check the disk";
  for (const auto& meaning : MEANINGS) {
    if (meaning.result != (result & 0xff)) continue;
    why.code = meaning.code;
    why.is_damage = meaning.is_damage;
    advice = meaning.advice;
  }
  const bool has_more = sqlite3_extended_errcode(store.db) == result &&
                        std::strcmp(sqlite3_errmsg(store.db), sqlite3_errstr(result)) != 0;
  why.sentence =
      join({"Dictionary ", quoted(store.path), ": ", advice, " (", sqlite3_errstr(result),
            has_more ? ": " : "", has_more ? sqlite3_errmsg(store.db) : "",
            system_reason(store, result), ")."});
  return false;
}

bool sqlite_swallowed(const sqlite_store& store, problem& why) {
  why.code = TAV_ERR_STORAGE;
  why.sentence = join({"Dictionary ", quoted(store.path), ": ", ROWS_SWALLOWED, "."});
  return false;
}

int sqlite_wait(void* base, int tries) {
  static constexpr int MILLISECONDS[] = {1, 2, 5, 10, 15, 20, 25, 25, 25, 50, 50, 100};
  int& left = static_cast<sqlite_store*>(base)->milliseconds_left;
  const size_t longest = std::size(MILLISECONDS) - 1;
  const int wait = std::min(left, MILLISECONDS[std::min(static_cast<size_t>(tries), longest)]);
  if (wait <= 0) return 0;
  left -= wait;
  sqlite3_sleep(wait);
  return 1;
}

int sqlite_number(sqlite_store& store, const char* query, int64_t& number) {
  sqlite3_stmt* statement = nullptr;
  int result = sqlite3_prepare_v2(store.db, query, -1, &statement, nullptr);
  if (result == SQLITE_OK) result = sqlite3_step(statement);
  if (result == SQLITE_ROW) number = sqlite3_column_int64(statement, 0);
  sqlite3_finalize(statement);
  return result == SQLITE_ROW ? SQLITE_OK : result;
}

bool sqlite_run(sqlite_store& store, const char* sql, problem& why) {
  const int result = sqlite3_exec(store.db, sql, nullptr, nullptr, nullptr);
  return result == SQLITE_OK || sqlite_failed(store, result, why);
}

}  // namespace dm
