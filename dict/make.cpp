// The commands init and add-database.
#include <iostream>

#include "dd/database_number.h"
#include "dict/commands.h"
#include "dict/terminal/visible.h"
#include "dm/open.h"
#include "dm/predefined.h"

namespace dict {

int fail(const dm::problem& why) {
  std::cout.flush();
  std::cerr << "tav_dict: " << visible{why.sentence} << '\n';
  return FAILED;
}

int init() {
  dm::settings settings;
  dm::problem why;
  if (!dm::read_settings(settings, why)) return fail(why);
  if (!settings.has_login) {
    why.sentence =
        "tav.conf has no entry 'userid' (or there is no tav.conf); it tells which database to "
        "make, "
        "such as 'userid = 0.0.0.1 /admin 1'.";
    return fail(why);
  }
  const auto fill = [&](dm::store& store, dm::problem& fault) {
    return dm::make_first_database(store, settings.database, fault);
  };
  std::string name;
  if (!dm::create_dictionary(settings, fill, name, why)) return fail(why);
  std::cout << "Made dictionary " << visible{name} << " with database "
            << dd_database_text(settings.database) << ".\n";
  return DONE;
}

static bool has_database(dm::store& store, uint64_t number, bool& is_there, dm::problem& why) {
  auto note = [&](const dm::database_row& row) { return is_there |= row.number == number, true; };
  return store.calls->databases(&store, dm::visit<dm::database_row>(note), why);
}

bool read_database(const std::string& text, uint64_t& number, dm::problem& why) {
  if (dd_read_database(text, number)) return true;
  why.sentence = dm::join({dm::quoted(text),
                           " is no database number: expected four numbers from 0 to 65535, such "
                           "as 0.0.1.1."});
  return false;
}

int add_database(const std::string& text) {
  dm::settings settings;
  dm::problem why;
  uint64_t number = 0;
  if (!read_database(text, number, why)) return fail(why);
  if (!dm::read_settings(settings, why)) return fail(why);
  const dm::store_owner store = dm::open_dictionary(settings, {}, why);
  if (store == nullptr || !store->calls->begin(store.get(), true, why)) return fail(why);
  bool is_there = false;
  if (!has_database(*store, number, is_there, why)) return fail(why);
  if (is_there) {
    why.sentence = dm::join({"Database ", dd_database_text(number), " is there already."});
    return fail(why);
  }
  if (!dm::make_database(*store, number, why)) return fail(why);
  if (!store->calls->commit(store.get(), why)) return fail(why);
  std::cout << "Added database " << dd_database_text(number) << ".\n";
  return DONE;
}

}  // namespace dict
