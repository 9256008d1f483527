// Dictionaries in files, which are named sqlite:PATH.
#include <filesystem>

#include "dm/engine.h"
#include "dm/open.h"
#include "dm/schema.h"
#include "dm/sqlite/dictionary_file.h"
#include "vantor/binding.h"

namespace dm {

static constexpr std::string_view PREFIX = "sqlite:";

static bool has_prefix(const std::string& dictionary) {
  return dictionary.compare(0, PREFIX.size(), PREFIX) == 0;
}

// Messages show the path, so a text that may hold a password (a server's address) is not taken.
static bool names_a_path(const std::string& dictionary) {
  return dictionary.size() > PREFIX.size() && !tav_text_holds_password(dictionary);
}

static bool is_no_secret(const std::string&) {
  return false;
}

static std::string path_of(const std::string& dictionary) {
  const std::string path = dictionary.substr(PREFIX.size());
  if (path.front() == '/') return path;
  const std::string folder = tav_conf_folder();
  return join({folder.empty() ? "." : folder, "/", path});
}

std::string seen_from_working_folder(const std::string& dictionary) {
  if (!has_prefix(dictionary) || dictionary.size() == PREFIX.size()) return dictionary;
  const auto path = std::filesystem::absolute(dictionary.substr(PREFIX.size()));
  return join({PREFIX, path.string()});
}

// Where there is no tav.conf, the default dictionary was looked for: the sentence then asks for a
// tav.conf, not for a correction of its entry.
static void name_what_is_missing(const std::string& dictionary, problem& why) {
  const bool is_named = *tav_conf_file() != '\0' || dictionary != DEFAULT_DICTIONARY;
  if (why.code == TAV_ERR_NOT_FOUND && !is_named) why.sentence = tav_conf_problem();
}

static store_owner open_file(const settings& settings, const open_options& options, problem& why) {
  store_owner opened = open_sqlite(path_of(settings.dictionary), options, why);
  if (opened == nullptr) name_what_is_missing(settings.dictionary, why);
  return opened;
}

static bool make_file(const settings& settings, const fill_store& fill, std::string& name,
                      problem& why) {
  name = path_of(settings.dictionary);
  return create_sqlite(name, SCHEMA_VERSION, fill, why);
}

const engine SQLITE_ENGINE = {
    .claims = has_prefix,
    .takes = names_a_path,
    .resembles = is_no_secret,
    .open = open_file,
    .make = make_file,
};

}  // namespace dm
