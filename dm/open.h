// Which engine keeps the dictionary that the configuration names.
#ifndef DM_OPEN_H
#define DM_OPEN_H

#include "dm/settings.h"
#include "dm/sqlite_store.h"

namespace dm {

// The path of a dictionary in an SQLite file, or "" with the reason for any other kind.
std::string sqlite_path(const settings& settings, problem& why);

store_owner open_dictionary(const settings& settings, const open_options& options, problem& why);

}  // namespace dm

#endif
