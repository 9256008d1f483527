// One database of the dictionary that tav.conf names, opened to be asked.
#ifndef DICT_READING_H
#define DICT_READING_H

#include <string>

#include "dm/settings.h"
#include "dm/store.h"

namespace dict {

struct reading {
  dm::settings settings{};
  dm::store_owner store{};
  dm::database_row database{};
};

// Begins a snapshot of the database of that number, of the login's where the text is empty: others
// may read and write meanwhile. False with the reason.
bool begin_reading(const std::string& database, reading& from, dm::problem& why);

// The number that the command line chooses, or the login's; false with the reason.
bool choose_database(const std::string& chosen, const dm::settings& settings, uint64_t& number,
                     dm::problem& why);

// Notes on standard error which entries of tav.conf have no effect.
void tell_unknown_entries();

}  // namespace dict

#endif
