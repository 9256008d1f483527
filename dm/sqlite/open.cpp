// Opening a dictionary file, transactions, closing.
#include "dm/schema.h"
#include "dm/sqlite/file_copy.h"
#include "dm/sqlite/file_place.h"
#include "dm/sqlite/handle.h"
#include "dm/sqlite/tables.h"

namespace dm {

static void disconnect(sqlite_store& store) {
  for (sqlite3_stmt*& statement : store.prepared) {
    sqlite3_finalize(statement);
    statement = nullptr;
  }
  sqlite3_close(store.db);
  store.db = nullptr;
}

static void sqlite_close(store* base) {
  disconnect(sqlite_of(base));
  delete &sqlite_of(base);
}

static const char* sqlite_name(store* base) {
  return sqlite_of(base).path.c_str();
}

static bool sqlite_writeable(store* base) {
  const sqlite_store& store = sqlite_of(base);
  return !store.is_copy && sqlite3_db_readonly(store.db, "main") == 0 &&
         (store.version == SCHEMA_VERSION || store.may_upgrade);
}

static int sqlite_version(store* base) {
  return sqlite_of(base).version;
}

// --- Opening ----------------------------------------------------------------------------------

static int read_number(sqlite_store& store, const char* pragma, int& number) {
  int64_t found = number;
  const int result = sqlite_number(store, pragma, found);
  number = static_cast<int>(found);
  return result;
}

// Whether an error will pass. A user who may not write in the folder cannot make the engine's files
// there; while writers come and go these may be missing or incomplete for a moment.
static bool is_passing(const sqlite_store& store, int result) {
  const int kind = result & 0xff;
  return store.is_onlooker && (kind == SQLITE_CANTOPEN || kind == SQLITE_READONLY ||
                               kind == SQLITE_BUSY || kind == SQLITE_PROTOCOL);
}

// The problem of a read. The engine's "read-only" then means that it could not make its files
// beside the dictionary; nobody asked to write.
static bool cannot_read(const sqlite_store& store, int result, problem& why) {
  return sqlite_failed(store, (result & 0xff) == SQLITE_READONLY ? SQLITE_CANTOPEN : result, why);
}

static void prepare(sqlite_store& store) {
  sqlite3_busy_handler(store.db, sqlite_wait, &store);
  sqlite3_db_config(store.db, SQLITE_DBCONFIG_ENABLE_FKEY, 1, nullptr);
  // Views and triggers may come from somebody else: they must not reach beyond this file.
  sqlite3_db_config(store.db, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
  sqlite3_db_config(store.db, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
}

static int open_engine(sqlite_store& store, const char* name) {
  disconnect(store);
  const int flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_EXRESCODE;
  const int result = sqlite3_open_v2(name, &store.db, flags, nullptr);
  if (result == SQLITE_OK) prepare(store);
  return result;
}

// Reads application id and schema version; with that the engine opens the file for the first time.
static int read_marks(sqlite_store& store, int& mark) {
  const int result = read_number(store, "PRAGMA application_id", mark);
  return result == SQLITE_OK ? read_number(store, "PRAGMA user_version", store.version) : result;
}

static int connect(sqlite_store& store, int& mark) {
  store.is_copy = false;
  const int result = open_engine(store, store.file.c_str());
  return result == SQLITE_OK ? read_marks(store, mark) : result;
}

// Opens a copy in memory instead of the file. False where somebody may be
// writing: try the file again.
static bool connect_to_copy(sqlite_store& store, int& mark, int& result) {
  sqlite_bytes bytes;
  if (!read_at_rest(store, bytes)) return false;
  store.is_copy = true;
  result = open_engine(store, ":memory:");
  if (result == SQLITE_OK) result = show_copy(store.db, std::move(bytes));
  if (result == SQLITE_OK) result = read_marks(store, mark);
  return true;
}

static int connect_in_time(sqlite_store& store, int& mark) {
  int result = connect(store, mark);
  for (int tries = 0; is_passing(store, result); ++tries) {
    if (connect_to_copy(store, mark, result) || sqlite_wait(&store, tries) == 0) break;
    result = connect(store, mark);
  }
  return result;
}

static bool open_place(sqlite_store& store, problem& why) {
  if (!find_place(store, why)) return false;
  int mark = 0;
  const int result = connect_in_time(store, mark);
  if (result != SQLITE_OK) return cannot_read(store, result, why);
  if (!store.is_copy && !may_commit(store, why)) return false;
  if (mark != DICTIONARY_MARK) return sqlite_failed(store, SQLITE_NOTADB, why);
  if (is_known_version(store.version)) return true;
  why.code = TAV_ERR_STORAGE;
  why.is_damage = true;
  why.sentence = join({"Dictionary ", quoted(store.path), other_version(store.version)});
  return false;
}

// --- Transactions -----------------------------------------------------------------------------

static void sqlite_rollback(store* base) {
  if (sqlite3_get_autocommit(sqlite_of(base).db) != 0) return;
  sqlite3_exec(sqlite_of(base).db, "ROLLBACK", nullptr, nullptr, nullptr);
}

// Begins a transaction and reads at once, because the engine takes its snapshot at the first read.
static bool begin_read(sqlite_store& store, problem& why) {
  // A copy is one snapshot; the next begins with what the file holds now.
  if (store.is_copy && store.has_begun && !open_place(store, why)) {
    store.is_copy = true;  // so that the next transaction tries again, and none may write
    return false;
  }
  store.has_begun = true;
  for (int tries = 0;; ++tries) {
    int version = 0;
    int result = sqlite3_exec(store.db, "BEGIN", nullptr, nullptr, nullptr);
    if (result == SQLITE_OK) result = read_number(store, "PRAGMA user_version", version);
    if (result == SQLITE_OK) return true;
    cannot_read(store, result, why);
    sqlite_rollback(&store);
    if (!is_passing(store, result) || sqlite_wait(&store, tries) == 0) return false;
    why = problem();
  }
}

static bool sqlite_begin(store* base, bool write, problem& why) {
  sqlite_store& store = sqlite_of(base);
  if (!write) return begin_read(store, why);
  if (store.version != SCHEMA_VERSION && !store.may_upgrade) {
    return needs_upgrade(store.path, store.version, why);
  }
  // Refused here because the engine would begin the transaction and fail at the first row only.
  if (!sqlite_writeable(base)) return sqlite_failed(store, SQLITE_READONLY, why);
  // A cache of 16 MB keeps the indexes of a large dictionary in memory. The journal of a statement
  // of many rows stays in memory too: else the engine would need a folder for temporary files.
  const bool has_begun = sqlite_run(store,
                                    "PRAGMA synchronous = FULL; PRAGMA cache_size = -16384;"
                                    "PRAGMA temp_store = MEMORY; BEGIN IMMEDIATE",
                                    why);
  if (!has_begun || !store.may_upgrade) return has_begun;
  // Another process may have upgraded it since it was opened.
  const int result = read_number(store, "PRAGMA user_version", store.version);
  return result == SQLITE_OK || sqlite_failed(store, result, why);
}

static bool sqlite_commit(store* base, problem& why) {
  sqlite_store& store = sqlite_of(base);
  if (!may_commit(store, why)) return sqlite_rollback(base), false;
  if (!sqlite_run(store, "COMMIT", why)) return false;
  if (is_in_place(store)) return true;
  // What the engine keeps beside the name belongs to the file that was opened.
  const std::string log = quoted(store.file + "-wal");
  const std::string advice = join(
      {"before anything opens this name again, move ", log, " and ", quoted(store.file + "-shm"),
       " to the file that was moved away: they hold its last changes, and damage another"});
  return outcome_unknown(store.path,
                         "the file was moved or replaced while the changes were committed", advice,
                         "it is no longer the one that was opened", why);
}

const store_calls SQLITE_CALLS = {
    .close = sqlite_close,
    .name = sqlite_name,
    .writeable = sqlite_writeable,
    .schema_version = sqlite_version,
    .begin = sqlite_begin,
    .commit = sqlite_commit,
    .rollback = sqlite_rollback,
    .databases = sqlite_databases,
    .fields = sqlite_fields,
    .classes = sqlite_classes,
    .tables = sqlite_tables,
    .count = sqlite_count,
    .size = sqlite_size,
    .add_database = sqlite_add_database,
    .set_counter = sqlite_set_counter,
    .add_fields = sqlite_add_fields,
    .set_description = sqlite_set_description,
    .delete_field = sqlite_delete_field,
    .put_class = sqlite_put_class,
    .delete_class = sqlite_delete_class,
    .add_table = sqlite_add_table,
    .delete_table = sqlite_delete_table,
    .delete_database = sqlite_delete_database,
    .identity = sqlite_identity,
    .set_identity = sqlite_set_identity,
    .journal_end = sqlite_journal_end,
    .journal = sqlite_journal,
    .journal_parts = sqlite_journal_parts,
    .add_record = sqlite_add_record,
    .add_part = sqlite_add_part,
    .forget_records = sqlite_forget_records,
    .upgrade = sqlite_upgrade,
    .integrity = sqlite_integrity,
};

store_owner open_sqlite(const std::string& path, const open_options& options, problem& why) {
  auto* store = new sqlite_store;
  store->calls = &SQLITE_CALLS;
  store_owner owner(store);
  store->path = path;
  store->milliseconds_left = options.busy_milliseconds;
  store->may_upgrade = options.may_upgrade;
  return open_place(*store, why) ? std::move(owner) : nullptr;
}

}  // namespace dm
