// A dictionary file read from memory, by who may not write beside it.
#ifndef DM_SQLITE_FILE_COPY_H
#define DM_SQLITE_FILE_COPY_H

#include "dm/sqlite/handle.h"

namespace dm {

// The bytes of a database file, in the engine's memory.
struct sqlite_bytes {
  std::unique_ptr<unsigned char, decltype(&sqlite3_free)> first{nullptr, sqlite3_free};
  sqlite3_int64 size = 0;
};

// Marks a database as one that is written with a write-ahead log, or not.
void mark_write_ahead(const sqlite_bytes& bytes, bool with_log);

// Reads the whole file, through the engine's own handle, while nobody writes to it. False when
// somebody may be doing so, now or since the file was last complete.
bool read_at_rest(sqlite_store& store, sqlite_bytes& bytes);

// Gives an open connection these bytes in place of its file.
int show_copy(sqlite3* db, sqlite_bytes bytes);

}  // namespace dm

#endif
