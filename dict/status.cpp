#include <iostream>
#include <vector>

#include "dd/database_number.h"
#include "dict/commands.h"
#include "dict/reading.h"
#include "dict/terminal/visible.h"
#include "dm/open.h"

namespace dict {

static const char* accepts(bool yes) {
  return yes ? "yes" : "no";
}

static bool print_database(dm::store& store, const dm::database_row& row, dm::problem& why) {
  int64_t fields = 0;
  int64_t classes = 0;
  if (!store.calls->count(&store, row.id, dm::counted::FIELDS, fields, why)) return false;
  if (!store.calls->count(&store, row.id, dm::counted::CLASSES, classes, why)) return false;
  std::cout << "database " << dd_database_text(row.number) << ": " << fields << " fields, "
            << classes << " classes\n";
  return true;
}

int status() {
  dm::settings settings;
  dm::problem why;
  if (!dm::read_settings(settings, why)) return fail(why);
  tell_unknown_entries();
  const dm::store_owner store = dm::open_dictionary(settings, {}, why);
  if (store == nullptr || !store->calls->begin(store.get(), false, why)) return fail(why);
  const bool writeable = store->calls->writeable(store.get());
  std::cout << "dictionary: " << visible{store->calls->name(store.get())} << '\n'
            << "schema version: " << store->calls->schema_version(store.get()) << '\n'
            << "writeable: " << accepts(writeable) << '\n'
            << "accepts fields: " << accepts(writeable && settings.fields_writeable) << '\n'
            << "accepts classes: " << accepts(writeable && settings.objects_writeable) << '\n';
  std::vector<dm::database_row> databases;
  auto note = [&](const dm::database_row& row) { return databases.push_back(row), true; };
  if (!store->calls->databases(store.get(), dm::visit<dm::database_row>(note), why)) {
    return fail(why);
  }
  for (const dm::database_row& row : databases) {
    if (!print_database(*store, row, why)) return fail(why);
  }
  return DONE;
}

}  // namespace dict
