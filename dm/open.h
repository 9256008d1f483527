// Which engine keeps the dictionary that the configuration names.
#ifndef DM_OPEN_H
#define DM_OPEN_H

#include "dm/settings.h"
#include "dm/store.h"

namespace dm {

// Opens an existing dictionary.
store_owner open_dictionary(const settings& settings, const open_options& options, problem& why);

// Makes the dictionary, with what `fill` writes, and says what it is called. Refuses one that is
// there; a failed or interrupted call leaves nothing behind.
bool create_dictionary(const settings& settings, const fill_store& fill, std::string& name,
                       problem& why);

}  // namespace dm

#endif
