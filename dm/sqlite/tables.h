// The tables and views of a dictionary in SQLite.
#ifndef DM_SQLITE_TABLES_H
#define DM_SQLITE_TABLES_H

namespace dm {

// The schema version is kept in the file as its user version.
// Marks a file as a dictionary; kept in the file as its application id ("TAVD").
inline constexpr int DICTIONARY_MARK = 0x54415644;

extern const char DICTIONARY_SCHEMA[];

}  // namespace dm

#endif
