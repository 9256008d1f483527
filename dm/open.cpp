#include "dm/open.h"

#include "dm/postgres_module.h"
#include "dm/sqlite/dictionary_file.h"
#include "vantor/binding.h"

namespace dm {

static bool begins(const std::string& text, std::string_view prefix) {
  return text.compare(0, prefix.size(), prefix) == 0;
}

static constexpr std::string_view FILE_PREFIX = "sqlite:";

// A path is told to everybody, so a server's address behind the prefix is none.
static bool is_file(const std::string& dictionary) {
  return begins(dictionary, FILE_PREFIX) && dictionary.size() > FILE_PREFIX.size() &&
         !tav_text_holds_password(dictionary);
}

// A URL, or a string of keys and values.
static bool is_on_server(const std::string& dictionary) {
  return !begins(dictionary, FILE_PREFIX) &&
         (begins(dictionary, "postgresql://") || begins(dictionary, "postgres://") ||
          dictionary.find('=') != std::string::npos);
}

static std::string sqlite_path(const std::string& dictionary) {
  const std::string path = dictionary.substr(FILE_PREFIX.size());
  if (path.front() == '/') return path;
  const std::string folder = tav_conf_folder();
  return join({folder.empty() ? "." : folder, "/", path});
}

// What is not understood may hold a password anywhere.
static bool bad_dictionary(problem& why) {
  why.code = TAV_ERR_BAD_CONF;
  why.sentence = join({"Configuration ", quoted(tav_conf_file()),
                       ": entry 'dictionary' is neither sqlite:PATH nor "
                       "postgresql://HOST/DATABASE; it is not repeated here, because it may hold "
                       "a password."});
  return false;
}

// Without a tav.conf there is no entry to correct.
static void name_what_is_missing(const std::string& dictionary, problem& why) {
  const bool is_named = *tav_conf_file() != '\0' || dictionary != DEFAULT_DICTIONARY;
  if (why.code == TAV_ERR_NOT_FOUND && !is_named) why.sentence = tav_conf_problem();
}

static open_options completed(open_options options, const settings& settings) {
  if (options.answer_milliseconds == 0)
    options.answer_milliseconds = settings.answer_seconds * 1000;
  return options;
}

store_owner open_dictionary(const settings& settings, const open_options& options, problem& why) {
  const std::string& dictionary = settings.dictionary;
  if (is_file(dictionary)) {
    store_owner opened = open_sqlite(sqlite_path(dictionary), options, why);
    if (opened == nullptr) name_what_is_missing(dictionary, why);
    return opened;
  }
  if (!is_on_server(dictionary)) return bad_dictionary(why), nullptr;
  const postgres_module* module = load_postgres(why);
  return module != nullptr ? module->open(dictionary, completed(options, settings), why) : nullptr;
}

static bool create_on_server(const settings& settings, const fill_store& fill, std::string& name,
                             problem& why) {
  const postgres_module* module = load_postgres(why);
  if (module == nullptr) return false;
  const store_owner made = module->begin_new(settings.dictionary, completed({}, settings), why);
  if (made == nullptr) return false;
  name = made->calls->name(made.get());
  return fill(*made, why) && made->calls->commit(made.get(), why);
}

bool create_dictionary(const settings& settings, const fill_store& fill, std::string& name,
                       problem& why) {
  if (is_on_server(settings.dictionary)) return create_on_server(settings, fill, name, why);
  if (!is_file(settings.dictionary)) return bad_dictionary(why);
  name = sqlite_path(settings.dictionary);
  return create_sqlite(name, fill, why);
}

}  // namespace dm
