// The place of a dictionary file: its name, its links, and the files that the engine keeps beside
// it.
//
// Processes find the write-ahead log by name, but the dictionary by the file that they have open.
// If two names, or a moved file, made these differ, changes would be lost. So a dictionary file
// must have one name, the name must lead to it at each commit, and a new file must have no files
// beside it.
#ifndef DM_SQLITE_FILE_PLACE_H
#define DM_SQLITE_FILE_PLACE_H

#include "dm/sqlite/handle.h"

namespace dm {

// Follows the links of the store's path, and refuses all but a readable regular file with one name.
// This comes before opening because the engine would only say "unable to open database file".
bool find_place(sqlite_store& store, problem& why);

// Whether a new dictionary can be made there: neither the file itself exists, nor one beside it
// that the engine would take for changes to it.
bool is_free(const std::string& path, problem& why);

// Whether the path still leads to the file that the engine has open. Uses stat only: closing any
// descriptor of the file would release the engine's locks on it.
bool is_in_place(const sqlite_store& store);

// The test before each commit: the file is in place and has one name; else a problem.
bool may_commit(const sqlite_store& store, problem& why);

// Whether a log or journal with changes that the file may lack stands beside it.
bool has_changes_beside(const std::string& file);

}  // namespace dm

#endif
