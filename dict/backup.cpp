// backup and restore: a dictionary file in between, whatever engine keeps the dictionary.
#include <iostream>

#include "dict/check.h"
#include "dict/commands.h"
#include "dm/copy.h"
#include "dm/open.h"
#include "dm/sqlite_store.h"

namespace dict {

static std::string path_of(const std::string& file) {
  return file.find('/') == std::string::npos ? "./" + file : file;
}

int backup(const std::string& file) {
  dm::settings settings;
  dm::problem why;
  if (!dm::read_settings(settings, why)) return fail(why);
  const dm::store_owner store = dm::open_dictionary(settings, {}, why);
  if (store == nullptr || !store->calls->begin(store.get(), false, why)) return fail(why);
  const auto fill = [&](dm::store& copy, dm::problem& fault) {
    return dm::copy_dictionary(*store, copy, fault);
  };
  if (!dm::create_sqlite(path_of(file), fill, why)) return fail(why);
  std::cout << "Wrote backup " << file << ".\n";
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
  // What is restored is the very snapshot that was found sound.
  if (store == nullptr || !store->calls->begin(store.get(), false, why)) return fail(why);
  checker check{*store, std::cout};
  if (!check_store(check)) return fail(check.why);
  if (check.findings > 0) {
    std::cerr << "tav_dict: The backup is damaged; nothing was restored.\n";
    return FOUND;
  }
  const auto fill = [&](dm::store& restored, dm::problem& fault) {
    return dm::copy_dictionary(*store, restored, fault);
  };
  std::string name;
  if (!dm::create_dictionary(settings, fill, name, why)) return fail(why);
  std::cout << "Restored dictionary " << name << " from " << file << ".\n";
  return DONE;
}

}  // namespace dict
