// Opening and making the dictionary that the settings name, whichever engine keeps it.
#ifndef DM_OPEN_H
#define DM_OPEN_H

#include "dm/settings.h"
#include "dm/store.h"

namespace dm {

// The sentence about a text that names no dictionary and is not from tav.conf.
inline constexpr char NAMES_NO_DICTIONARY[] =
    "the text names no dictionary: expected sqlite:PATH or postgresql://HOST/DATABASE. It is not "
    "repeated here, because it may hold a password.";

// Makes the path of a sqlite: text from a command line absolute, seen from the working folder: the
// settings would take a relative one from tav.conf's folder. Other texts are given back unchanged.
std::string seen_from_working_folder(const std::string& dictionary);

// Whether a text that names no dictionary may be one's name in a wrong place, with a password in
// it.
bool is_misplaced_secret(const std::string& text);

// Opens an existing dictionary; null with the reason.
store_owner open_dictionary(const settings& settings, const open_options& options, problem& why);

// Makes the dictionary with what `fill` writes; sets its name for messages. Refuses an existing
// one. False with the reason; a failed or interrupted call leaves nothing behind.
bool create_dictionary(const settings& settings, const fill_store& fill, std::string& name,
                       problem& why);

}  // namespace dm

#endif
