// The tables and views of a dictionary in SQLite.
#ifndef DM_SQLITE_TABLES_H
#define DM_SQLITE_TABLES_H

namespace dm {

// Marks a file as a dictionary: its application id, the letters "TAVD".
inline constexpr int DICTIONARY_MARK = 0x54415644;

// SQL that makes all tables and views. The schema's version (SCHEMA_VERSION in dm/schema.h) is kept
// in the file as its user version.
extern const char DICTIONARY_SCHEMA[];

}  // namespace dm

#endif
