#include "dm/sqlite/file_copy.h"

#include <unistd.h>

#include <algorithm>

#include "dm/sqlite/file_place.h"

namespace dm {

// Bytes 18 and 19 of a database file: 2 means a write-ahead log, 1 a rollback journal.
static constexpr size_t WRITE_VERSION = 18, READ_VERSION = 19;

bool mark_write_ahead(int file) {
  static constexpr char WITH_LOG[] = {2, 2};
  return pwrite(file, WITH_LOG, sizeof WITH_LOG, WRITE_VERSION) == sizeof WITH_LOG;
}

static bool read_bytes(sqlite3_file* file, sqlite_bytes& bytes) {
  static constexpr sqlite3_int64 PIECE = 1 << 24;
  if (file->pMethods->xFileSize(file, &bytes.size) != SQLITE_OK) return false;
  if (bytes.size <= static_cast<sqlite3_int64>(READ_VERSION)) return false;
  bytes.first.reset(
      static_cast<unsigned char*>(sqlite3_malloc64(static_cast<sqlite3_uint64>(bytes.size))));
  if (bytes.first == nullptr) return false;
  for (sqlite3_int64 at = 0; at < bytes.size; at += PIECE) {
    const auto count = static_cast<int>(std::min(PIECE, bytes.size - at));
    if (file->pMethods->xRead(file, bytes.first.get() + at, count, at) != SQLITE_OK) return false;
  }
  return true;
}

// While we hold the shared lock, no connection that closes can copy the log into the file and
// remove the log. So if no log with changes is there before and after reading, there was none in
// between, and the file did not change.
bool read_at_rest(sqlite_store& store, sqlite_bytes& bytes) {
  sqlite3_file* file = nullptr;
  sqlite3_file_control(store.db, "main", SQLITE_FCNTL_FILE_POINTER, &file);
  if (file == nullptr || file->pMethods == nullptr) return false;
  if (file->pMethods->xLock(file, SQLITE_LOCK_SHARED) != SQLITE_OK) return false;
  const bool is_whole =
      !has_changes_beside(store.file) && read_bytes(file, bytes) && !has_changes_beside(store.file);
  file->pMethods->xUnlock(file, SQLITE_LOCK_NONE);
  return is_whole;
}

int show_copy(sqlite3* db, sqlite_bytes bytes) {
  bytes.first.get()[WRITE_VERSION] = bytes.first.get()[READ_VERSION] = 1;
  return sqlite3_deserialize(db, "main", bytes.first.release(), bytes.size, bytes.size,
                             SQLITE_DESERIALIZE_FREEONCLOSE | SQLITE_DESERIALIZE_READONLY);
}

}  // namespace dm
