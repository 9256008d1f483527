// The tables and views of a dictionary in SQLite.
#ifndef DM_SQLITE_TABLES_H
#define DM_SQLITE_TABLES_H

#include "dm/schema.h"

namespace dm {

// Marks a file as a dictionary: its application id, the letters "TAVD".
inline constexpr int DICTIONARY_MARK = 0x54415644;

// SQL that makes the tables, views and triggers which a schema version adds to the one before. The
// version is kept in the file as its user version.
std::string schema_step(int version);

// SQL that makes the triggers against deletions in the journal; a part of the second version.
extern const char DELETION_GUARDS[];

}  // namespace dm

#endif
