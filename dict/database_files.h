// SQLite databases, and the names beside them that the engine keeps for itself.
#ifndef DICT_DATABASE_FILES_H
#define DICT_DATABASE_FILES_H

#include <string>

#include "dm/problem.h"

namespace dict {

// Whether the file that the option names is no database: a dictionary is one, which a run may not
// even read. False with the reason.
bool spares_database(const char* option, const std::string& written, dm::problem& why);

// Whether a file or folder of that name, there or not, would not be taken for a log or journal of
// the database beside it. Links are followed. The database is opened for a moment, so that this
// must come before a dictionary is: closing the file gives up the engine's locks. False with the
// reason.
bool spares_companions(const std::string& written, dm::problem& why);

}  // namespace dict

#endif
