#include "dict/reading.h"

#include <iostream>

#include "dict/commands.h"
#include "dm/open.h"
#include "dm/session.h"
#include "vantor/binding.h"

namespace dict {

bool choose_database(const std::string& chosen, const dm::settings& settings, uint64_t& number,
                     dm::problem& why) {
  if (!chosen.empty()) return read_database(chosen, number, why);
  number = settings.database;
  if (settings.has_login) return true;
  why.sentence = "tav.conf has no entry 'userid', which names the database; choose one with -d.";
  if (*tav_conf_file() == '\0') why.sentence = tav_conf_problem();
  return false;
}

bool begin_reading(const std::string& database, reading& from, dm::problem& why) {
  uint64_t number = 0;
  if (!dm::read_settings(from.settings, why)) return false;
  if (!choose_database(database, from.settings, number, why)) return false;
  from.store = dm::open_dictionary(from.settings, {}, why);
  return from.store != nullptr && from.store->calls->begin(from.store.get(), false, why) &&
         dm::find_database(*from.store, number, 0, from.database, why);
}

void tell_unknown_entries() {
  for (const std::string& sentence : dm::unknown_entries()) {
    std::cerr << "tav_dict: Note: " << sentence << '\n';
  }
}

}  // namespace dict
