// Making a dictionary file. It is built in a file without a name, which takes no memory however
// large it gets, and then copied into another that gets its name when it is complete: so nobody
// ever sees a part of it. The engine cannot open a file that never had a name, and a file that lost
// its name cannot be given one; hence two.
#include <fcntl.h>
#include <stdlib.h>
#include <unistd.h>

#include <cerrno>

#include "dm/blocked_signals.h"
#include "dm/schema.h"
#include "dm/sqlite/file_copy.h"
#include "dm/sqlite/file_place.h"
#include "dm/sqlite/new_file.h"
#include "dm/sqlite/tables.h"

namespace dm {

// Bytes of a page: large enough that definitions of some kilobytes need few overflow pages, small
// enough that looking up one field reads little.
// What failed is thrown away as a whole, so it needs no journal, and is synchronised once, at the
// end.
static constexpr char FIRST[] =
    "PRAGMA page_size = 8192; PRAGMA journal_mode = OFF; PRAGMA synchronous = OFF;"
    "PRAGMA cache_size = -16384; PRAGMA temp_store = MEMORY";

static bool make_tables(sqlite_store& store, int version, problem& why) {
  for (int step = 1; step <= version; ++step) {
    if (!sqlite_run(store, schema_step(step).c_str(), why)) return false;
  }
  return sqlite_run(store, ("PRAGMA user_version = " + std::to_string(version)).c_str(), why);
}

static bool build(sqlite_store& store, const fill_store& fill, problem& why) {
  const std::string mark = "PRAGMA application_id = " + std::to_string(DICTIONARY_MARK);
  return sqlite_run(store, FIRST, why) && sqlite_run(store, "BEGIN", why) &&
         sqlite_run(store, mark.c_str(), why) && make_tables(store, store.version, why) &&
         fill(store, why) && sqlite_run(store, "COMMIT", why);
}

namespace {

// A file that loses its name as soon as the engine has it open: whatever happens, it is gone with
// the process.
struct scratch_file {
  explicit scratch_file(const std::string& folder) : name(folder + "tav_dict.XXXXXX") {
    const blocked_signals blocked;
    fd = mkostemp(name.data(), O_CLOEXEC);
    error = errno;
    if (fd >= 0) {
      result =
          sqlite3_open_v2(name.c_str(), &db, SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX, nullptr);
      unlink(name.c_str());
    }
  }
  ~scratch_file() {
    if (fd >= 0) close(fd);
  }
  scratch_file(const scratch_file&) = delete;
  scratch_file& operator=(const scratch_file&) = delete;

  std::string name;
  int fd = -1;
  int error = 0;
  int result = SQLITE_OK;
  sqlite3* db = nullptr;  // the store's
};

}  // namespace

bool create_sqlite(const std::string& path, int version, const fill_store& fill, problem& why) {
  if (!is_free(path, why)) return false;
  scratch_file scratch(path.substr(0, path.rfind('/') + 1));
  if (scratch.fd < 0) return cannot_make(path, scratch.error, why);
  auto* store = new sqlite_store;
  store->calls = &SQLITE_CALLS;
  const store_owner owner(store);
  store->path = path;
  store->version = version;
  store->db = scratch.db;
  if (scratch.result != SQLITE_OK) return sqlite_failed(*store, scratch.result, why);
  if (!build(*store, fill, why)) return false;
  if (!mark_write_ahead(scratch.fd)) return cannot_make(path, errno, why);
  // Tested again: while this one was filled, somebody may have moved another dictionary away and
  // left its log.
  return is_free(path, why) && make_file(path, scratch.fd, why);
}

}  // namespace dm
