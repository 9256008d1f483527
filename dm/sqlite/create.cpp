// Making a dictionary file. It is built in memory and written at once, so that nobody ever sees
// a part of it.
#include "dm/schema.h"
#include "dm/sqlite/file_copy.h"
#include "dm/sqlite/file_place.h"
#include "dm/sqlite/new_file.h"
#include "dm/sqlite/tables.h"

namespace dm {

// Bytes of a page: large enough that definitions of some kilobytes need few overflow pages, small
// enough that looking up one field reads little.
static constexpr char PAGE_SIZE[] = "PRAGMA page_size = 8192";

static bool make_tables(sqlite_store& store, int version, problem& why) {
  for (int step = 1; step <= version; ++step) {
    if (!sqlite_run(store, schema_step(step).c_str(), why)) return false;
  }
  return sqlite_run(store, ("PRAGMA user_version = " + std::to_string(version)).c_str(), why);
}

static bool build(sqlite_store& store, const fill_store& fill, problem& why) {
  const std::string mark = "PRAGMA application_id = " + std::to_string(DICTIONARY_MARK);
  return sqlite_run(store, PAGE_SIZE, why) && sqlite_run(store, "BEGIN", why) &&
         sqlite_run(store, mark.c_str(), why) && make_tables(store, store.version, why) &&
         fill(store, why) && sqlite_run(store, "COMMIT", why);
}

bool create_sqlite(const std::string& path, int version, const fill_store& fill, problem& why) {
  if (!is_free(path, why)) return false;
  auto* store = new sqlite_store;
  store->calls = &SQLITE_CALLS;
  const store_owner owner(store);
  store->path = path;
  store->version = version;
  const int result =
      sqlite3_open_v2(":memory:", &store->db,
                      SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX, nullptr);
  if (result != SQLITE_OK) return sqlite_failed(*store, result, why);
  if (!build(*store, fill, why)) return false;
  sqlite_bytes bytes;
  bytes.first.reset(sqlite3_serialize(store->db, "main", &bytes.size, 0));
  if (bytes.first == nullptr) return sqlite_failed(*store, SQLITE_NOMEM, why);
  mark_write_ahead(bytes, true);
  // Tested again: while this one was filled, somebody may have moved another dictionary away and
  // left its log.
  return is_free(path, why) && make_file(path,
                                         {reinterpret_cast<const char*>(bytes.first.get()),
                                          static_cast<size_t>(bytes.size)},
                                         why);
}

}  // namespace dm
