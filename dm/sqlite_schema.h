// The tables and views of a dictionary in SQLite.
#ifndef DM_SQLITE_SCHEMA_H
#define DM_SQLITE_SCHEMA_H

namespace dm {

// Raised with every change of the tables; kept in the file as its user version.
inline constexpr int SCHEMA_VERSION = 1;
// Marks a file as a dictionary; kept in the file as its application id ("TAVD").
inline constexpr int DICTIONARY_MARK = 0x54415644;

extern const char DICTIONARY_SCHEMA[];

}  // namespace dm

#endif
