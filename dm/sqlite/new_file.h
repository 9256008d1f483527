// Making a file that appears complete or not at all.
#ifndef DM_SQLITE_NEW_FILE_H
#define DM_SQLITE_NEW_FILE_H

#include <string>

#include "dm/problem.h"

namespace dm {

// Makes the file with all bytes of an open one, for its owner only, on the disk when the call
// returns. An existing file of that name is refused and stays as it is; a failure, or the end of
// the process in between, leaves nothing.
bool make_file(const std::string& path, int from, problem& why);

// The problem that a file cannot be made, from an errno; gives false.
bool cannot_make(const std::string& path, int error, problem& why);

}  // namespace dm

#endif
