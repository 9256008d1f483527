// Which engine keeps the dictionary that the configuration names.
#ifndef DM_OPEN_H
#define DM_OPEN_H

#include "dm/settings.h"
#include "dm/store.h"

namespace dm {

// What is said of a text that names no dictionary, outside of the configuration.
inline constexpr char NAMES_NO_DICTIONARY[] =
    "the text names no dictionary: expected sqlite:PATH or postgresql://HOST/DATABASE. It is not "
    "repeated here, because it may hold a password.";

// The same dictionary for a text from a command line: a path in it is seen from the working folder,
// not from tav.conf's.
std::string seen_from_working_folder(const std::string& dictionary);

// Whether a text that names no dictionary may be one's name in a wrong place, with a password in
// it.
bool is_misplaced_secret(const std::string& text);

// Opens an existing dictionary.
store_owner open_dictionary(const settings& settings, const open_options& options, problem& why);

// Makes the dictionary, with what `fill` writes, and says what it is called. Refuses one that is
// there; a failed or interrupted call leaves nothing behind.
bool create_dictionary(const settings& settings, const fill_store& fill, std::string& name,
                       problem& why);

}  // namespace dm

#endif
