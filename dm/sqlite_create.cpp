// Making a dictionary file. It is built in memory and written at once, so that nobody ever sees
// a part of it.
#include <cerrno>

#include "dm/new_file.h"
#include "dm/schema.h"
#include "dm/sqlite_handle.h"
#include "dm/sqlite_schema.h"

namespace dm {

// Few overflow pages for class definitions of some kilobytes, still little to read for one field.
static constexpr char PAGE_SIZE[] = "PRAGMA page_size = 8192";

// Bytes 18 and 19 of a database file say which way of writing it wants; 2 is the write-ahead log.
static constexpr size_t WRITE_VERSION = 18, READ_VERSION = 19;
static constexpr unsigned char WRITE_AHEAD_LOG = 2;

static bool build(sqlite_store& store, const fill_store& fill, problem& why) {
  const std::string marks = join({"PRAGMA application_id = ", std::to_string(DICTIONARY_MARK),
                                  "; PRAGMA user_version = ", std::to_string(SCHEMA_VERSION)});
  return sqlite_run(store, PAGE_SIZE, why) && sqlite_run(store, "BEGIN", why) &&
         sqlite_run(store, marks.c_str(), why) && sqlite_run(store, DICTIONARY_SCHEMA, why) &&
         fill(store, why) && sqlite_run(store, "COMMIT", why);
}

// Whether nothing of that name is there. What a dictionary that is gone left behind would be taken
// for changes to the new one.
static bool is_free(const std::string& path, problem& why) {
  struct stat found {};
  if (lstat(path.c_str(), &found) == 0) return cannot_make(path, EEXIST, why);
  for (const char* ending : {"-wal", "-journal"}) {
    struct stat left {};
    if (stat((path + ending).c_str(), &left) != 0 || left.st_size == 0) continue;
    why.code = TAV_ERR_CONFLICT;
    why.sentence = join({"Dictionary ", quoted(path), " cannot be made: ", quoted(path + ending),
                         " is left over from another one of that name; move it away."});
    return false;
  }
  return true;
}

bool create_sqlite(const std::string& path, const fill_store& fill, problem& why) {
  if (!is_free(path, why)) return false;
  auto* store = new sqlite_store;
  store->calls = &SQLITE_CALLS;
  const store_owner owner(store);
  store->path = path;
  const int result =
      sqlite3_open_v2(":memory:", &store->db,
                      SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX, nullptr);
  if (result != SQLITE_OK) return sqlite_failed(*store, result, why);
  if (!build(*store, fill, why)) return false;
  sqlite3_int64 size = 0;
  const std::unique_ptr<unsigned char, decltype(&sqlite3_free)> bytes(
      sqlite3_serialize(store->db, "main", &size, 0), sqlite3_free);
  if (bytes == nullptr) return sqlite_failed(*store, SQLITE_NOMEM, why);
  bytes.get()[WRITE_VERSION] = bytes.get()[READ_VERSION] = WRITE_AHEAD_LOG;
  return make_file(path, {reinterpret_cast<const char*>(bytes.get()), static_cast<size_t>(size)},
                   why);
}

}  // namespace dm
