// Writing a backup, for commands that make one.
#ifndef DICT_BACKUP_H
#define DICT_BACKUP_H

#include <string>

#include "dict/terminal/progress.h"
#include "dm/store.h"

namespace dict {

// Copies what the store holds, in its open transaction, into a new dictionary file of the same
// schema version. False with the reason; then there is no file.
bool write_backup(dm::store& from, const std::string& file, progress& shown, dm::problem& why);

}  // namespace dict

#endif
