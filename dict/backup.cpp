// The commands backup and restore. A backup is an SQLite dictionary file, whatever engine keeps the
// dictionary.
#include <iostream>

#include "dict/backup.h"
#include "dict/check/check.h"
#include "dict/commands.h"
#include "dict/database_files.h"
#include "dict/terminal/progress.h"
#include "dict/terminal/visible.h"
#include "dm/copy.h"
#include "dm/open.h"
#include "dm/sqlite/dictionary_file.h"

namespace dict {

// The path as the calls for dictionary files need it: with a folder.
static std::string path_of(const std::string& file) {
  return file.find('/') == std::string::npos ? "./" + file : file;
}

// Copies the dictionary; `finish` is what follows.
static dm::fill_store copy_of(dm::store& from, progress& shown,
                              bool (*finish)(dm::store&, dm::store&, dm::problem&)) {
  return [&from, &shown, finish](dm::store& to, dm::problem& why) {
    const auto copied = [&shown] { step(shown); };
    return dm::copy_dictionary(from, to, copied, why) && finish(from, to, why);
  };
}

bool write_backup(dm::store& from, const std::string& file, progress& shown, dm::problem& why) {
  const int version = from.calls->schema_version(&from);
  return dm::create_sqlite(path_of(file), version, copy_of(from, shown, dm::copy_identity), why);
}

int backup(const std::string& file) {
  dm::settings settings;
  dm::problem why;
  if (!spares_companions(file, why) || !dm::read_settings(settings, why)) return fail(why);
  const dm::store_owner store = dm::open_dictionary(settings, {}, why);
  if (store == nullptr || !store->calls->begin(store.get(), false, why)) return fail(why);
  progress shown("copying rows");
  const bool made = write_backup(*store, file, shown, why);
  hide(shown);
  if (!made) return fail(why);
  std::cout << "Wrote backup " << visible{file} << ".\n";
  return DONE;
}

int restore(const std::string& file) {
  dm::settings settings;
  dm::problem why;
  if (!dm::read_settings(settings, why)) return fail(why);
  const dm::store_owner store = dm::open_sqlite(path_of(file), {}, why);
  if (store == nullptr && why.code == TAV_ERR_NOT_FOUND) {
    why.sentence = dm::join({"Backup ", dm::quoted(file), " does not exist."});
  }
  // One transaction for checking and copying, so that exactly what was checked is restored.
  if (store == nullptr || !store->calls->begin(store.get(), false, why)) return fail(why);
  checker check{*store, std::cout};
  const bool is_checked = check_store(check);
  hide(check.shown);
  if (!is_checked) return fail(check.why);
  if (check.findings > 0) {
    std::cerr << "tav_dict: The backup is damaged; nothing was restored.\n";
    return FOUND;
  }
  next(check.shown, "copying rows");
  std::string name;
  const bool made =
      dm::create_dictionary(settings, copy_of(*store, check.shown, dm::begin_restored), name, why);
  hide(check.shown);
  if (!made) return fail(why);
  std::cout << "Restored dictionary " << visible{name} << " from " << visible{file} << ".\n";
  return DONE;
}

}  // namespace dict
