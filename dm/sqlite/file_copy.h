// Reading a dictionary from a copy in memory, for a user who may not write in the file's folder:
// the engine would have to make files there.
#ifndef DM_SQLITE_FILE_COPY_H
#define DM_SQLITE_FILE_COPY_H

#include "dm/sqlite/handle.h"

namespace dm {

// The bytes of a database file, in the engine's memory.
struct sqlite_bytes {
  std::unique_ptr<unsigned char, decltype(&sqlite3_free)> first{nullptr, sqlite3_free};
  sqlite3_int64 size = 0;
};

// Marks an open database file, which uses no log, as one with a write-ahead log.
bool mark_write_ahead(int file);

// Reads the whole file through the engine's own handle, if the file is complete and nobody writes
// to it. False where somebody may be writing, or a log with changes stands beside the file.
bool read_at_rest(sqlite_store& store, sqlite_bytes& bytes);

// Makes an open connection read these bytes instead of its file; gives the engine's result code.
int show_copy(sqlite3* db, sqlite_bytes bytes);

}  // namespace dm

#endif
