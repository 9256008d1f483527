// Where a dictionary file stands: its name, its links, what the engine keeps beside it.
//
// Processes share the write-ahead log by its name, and the rest by the file that they opened. So a
// file has one name, that name leads to it as long as it is written, and nothing stands beside a
// new one.
#ifndef DM_SQLITE_FILE_PLACE_H
#define DM_SQLITE_FILE_PLACE_H

#include "dm/sqlite/handle.h"

namespace dm {

// Follows the links of the store's path and looks at what is there: a regular file of one name that
// can be read. The engine is asked later, and would only say that it is unable to open it.
bool find_place(sqlite_store& store, problem& why);

// Whether nothing stands there, nor anything that would be taken for changes to a new dictionary.
bool is_free(const std::string& path, problem& why);

// Whether the path still leads to the file that the engine has open. The name is looked at only:
// opening the file and closing it again would let go the engine's locks.
bool is_in_place(const sqlite_store& store);

// The same before a change is stored, and whether the file still has one name; says why not.
bool may_commit(const sqlite_store& store, problem& why);

// Whether changes stand beside the file that it does not hold itself.
bool has_changes_beside(const std::string& file);

}  // namespace dm

#endif
