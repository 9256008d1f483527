// A dictionary in an SQLite file.
#ifndef DM_SQLITE_DICTIONARY_FILE_H
#define DM_SQLITE_DICTIONARY_FILE_H

#include <string>

#include "dm/store.h"

namespace dm {

// Opens an existing dictionary; none with the reason when it is missing, no dictionary, of another
// schema version, locked or unreadable. One that cannot be written is opened for reading.
store_owner open_sqlite(const std::string& path, const open_options& options, problem& why);

// Makes a dictionary of that schema version that holds what `fill` writes, readable and writeable
// by its owner only. Refuses an existing file; a failed or interrupted call leaves nothing behind.
bool create_sqlite(const std::string& path, int version, const fill_store& fill, problem& why);

}  // namespace dm

#endif
