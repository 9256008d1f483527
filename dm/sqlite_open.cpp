// Opening a dictionary file, transactions, closing.
#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "dm/schema.h"
#include "dm/sqlite_handle.h"
#include "dm/sqlite_schema.h"

namespace dm {

static void sqlite_close(store* base) {
  sqlite_store* store = &sqlite_of(base);
  for (sqlite3_stmt* statement : store->prepared) sqlite3_finalize(statement);
  sqlite3_close(store->db);
  delete store;
}

static const char* sqlite_name(store* base) {
  return sqlite_of(base).path.c_str();
}

static bool sqlite_writeable(store* base) {
  return sqlite3_db_readonly(sqlite_of(base).db, "main") == 0;
}

static int sqlite_version(store* base) {
  return sqlite_of(base).version;
}

static bool sqlite_begin(store* base, bool write, problem& why) {
  sqlite_store& store = sqlite_of(base);
  if (!write) return sqlite_run(store, "BEGIN", why);
  // The engine itself would begin, and fail at the first row only.
  if (!sqlite_writeable(base)) return sqlite_failed(store, SQLITE_READONLY, why);
  // The indexes of a large dictionary stay in memory while it is written: 16 MB. So does what
  // undoes a statement of many rows, which would ask for a folder of temporary files.
  return sqlite_run(store,
                    "PRAGMA synchronous = FULL; PRAGMA cache_size = -16384;"
                    "PRAGMA temp_store = MEMORY; BEGIN IMMEDIATE",
                    why);
}

static bool sqlite_commit(store* base, problem& why) {
  return sqlite_run(sqlite_of(base), "COMMIT", why);
}

static void sqlite_rollback(store* base) {
  if (sqlite3_get_autocommit(sqlite_of(base).db) != 0) return;
  sqlite3_exec(sqlite_of(base).db, "ROLLBACK", nullptr, nullptr, nullptr);
}

const store_calls SQLITE_CALLS = {
    sqlite_close,        sqlite_name,        sqlite_writeable,  sqlite_version,
    sqlite_begin,        sqlite_commit,      sqlite_rollback,   sqlite_databases,
    sqlite_fields,       sqlite_classes,     sqlite_tables,     sqlite_count,
    sqlite_add_database, sqlite_set_counter, sqlite_add_fields, sqlite_set_description,
    sqlite_delete_field, sqlite_put_class,   sqlite_add_table,  sqlite_delete_table,
    sqlite_integrity,
};

static bool refuse(problem& why, int32_t code, std::string sentence) {
  why.code = code;
  why.sentence = std::move(sentence);
  return false;
}

static bool is_allowed(const std::string& path, int mode) {
  return faccessat(AT_FDCWD, path.c_str(), mode, AT_EACCESS) == 0;
}

// The file is there, is a file and can be read: what the engine would only call "unable to open".
static bool is_readable_file(const std::string& path, struct stat& found, problem& why) {
  if (stat(path.c_str(), &found) != 0 && errno == ENOENT) {
    why.detail = ENOENT;
    return refuse(why, TAV_ERR_NOT_FOUND,
                  join({"Dictionary ", quoted(path),
                        " does not exist; correct the entry "
                        "'dictionary' of section [dm], or make it with 'tav_dict init'."}));
  }
  const bool is_file = found.st_mode == 0 || S_ISREG(found.st_mode);
  if (is_file && is_allowed(path, R_OK)) return true;
  why.detail = is_file ? errno : EISDIR;
  why.is_damage = !is_file;
  return refuse(why, TAV_ERR_STORAGE,
                join({"Dictionary ", quoted(path), is_file ? " cannot be read: " : " is no file: ",
                      std::strerror(why.detail), "."}));
}

static int read_number(sqlite_store& store, const char* pragma, int& number) {
  sqlite3_stmt* statement = nullptr;
  int result = sqlite3_prepare_v2(store.db, pragma, -1, &statement, nullptr);
  if (result == SQLITE_OK) result = sqlite3_step(statement);
  if (result == SQLITE_ROW) number = sqlite3_column_int(statement, 0);
  sqlite3_finalize(statement);
  return result == SQLITE_ROW ? SQLITE_OK : result;
}

// Connects and reads the file's marks, which is the first time that the engine looks at it.
static int connect(sqlite_store& store, const char* name, int flags, const open_options& options,
                   int& mark) {
  sqlite3_close(store.db);
  store.db = nullptr;
  int result = sqlite3_open_v2(name, &store.db, flags | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_EXRESCODE,
                               nullptr);
  if (result != SQLITE_OK) return result;
  sqlite3_busy_timeout(store.db, options.busy_milliseconds);
  sqlite3_db_config(store.db, SQLITE_DBCONFIG_ENABLE_FKEY, 1, nullptr);
  // Whoever made the file, its views and triggers do nothing beyond it.
  sqlite3_db_config(store.db, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
  sqlite3_db_config(store.db, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
  result = read_number(store, "PRAGMA application_id", mark);
  return result == SQLITE_OK ? read_number(store, "PRAGMA user_version", store.version) : result;
}

// Whether nobody here can be writing to the file: its folder takes no log of changes, and there is
// none left over.
static bool can_read_unlocked(const std::string& path) {
  struct stat log {};
  const bool has_log = stat((path + "-wal").c_str(), &log) == 0 && log.st_size > 0;
  return !has_log && !is_allowed(path.substr(0, path.rfind('/') + 1), W_OK);
}

static std::string unlocked_name(const std::string& path) {
  std::string name = "file:";
  for (const char c : path) {
    if (c == '%') name += "%25";
    if (c == '?') name += "%3f";
    if (c == '#') name += "%23";
    if (c != '%' && c != '?' && c != '#') name += c;
  }
  return name + "?immutable=1";
}

store_owner open_sqlite(const std::string& path, const open_options& options, problem& why) {
  auto* store = new sqlite_store;
  store->calls = &SQLITE_CALLS;
  store->path = path;
  store_owner owner(store);
  if (!is_readable_file(path, store->opened, why)) return nullptr;
  int mark = 0;
  int result = connect(*store, path.c_str(), SQLITE_OPEN_READWRITE, options, mark);
  const int kind = result & 0xff;
  if ((kind == SQLITE_CANTOPEN || kind == SQLITE_READONLY) && can_read_unlocked(path)) {
    store->unlocked = true;
    result = connect(*store, unlocked_name(path).c_str(), SQLITE_OPEN_READONLY | SQLITE_OPEN_URI,
                     options, mark);
  }
  if (result != SQLITE_OK) return sqlite_failed(*store, result, why), nullptr;
  if (mark != DICTIONARY_MARK) return sqlite_failed(*store, SQLITE_NOTADB, why), nullptr;
  if (store->version == SCHEMA_VERSION) return owner;
  why.is_damage = true;
  refuse(why, TAV_ERR_STORAGE, join({"Dictionary ", quoted(path), other_version(store->version)}));
  return nullptr;
}

}  // namespace dm
