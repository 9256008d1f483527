#include "dm/open.h"

#include "dm/postgres_module.h"
#include "dm/sqlite_store.h"
#include "vantor/data_manager.h"

namespace dm {

static bool begins(const std::string& text, std::string_view prefix) {
  return text.compare(0, prefix.size(), prefix) == 0;
}

static constexpr std::string_view FILE_PREFIX = "sqlite:";

static bool is_file(const std::string& dictionary) {
  return begins(dictionary, FILE_PREFIX) && dictionary.size() > FILE_PREFIX.size();
}

// A URL, or a string of keys and values.
static bool is_on_server(const std::string& dictionary) {
  return !is_file(dictionary) &&
         (begins(dictionary, "postgresql://") || begins(dictionary, "postgres://") ||
          dictionary.find('=') != std::string::npos);
}

static std::string sqlite_path(const std::string& dictionary) {
  const std::string path = dictionary.substr(FILE_PREFIX.size());
  if (path.front() == '/') return path;
  const std::string folder = tav_conf_folder();
  return join({folder.empty() ? "." : folder, "/", path});
}

static bool bad_dictionary(const std::string& text, problem& why) {
  why.code = TAV_ERR_BAD_CONF;
  why.sentence = join({"Configuration ", quoted(tav_conf_file()), ": entry 'dictionary' is ",
                       quoted(text), "; expected sqlite:PATH or postgresql://HOST/DATABASE."});
  return false;
}

static open_options completed(open_options options, const settings& settings) {
  if (options.answer_milliseconds == 0)
    options.answer_milliseconds = settings.answer_seconds * 1000;
  return options;
}

store_owner open_dictionary(const settings& settings, const open_options& options, problem& why) {
  const std::string& dictionary = settings.dictionary;
  if (is_file(dictionary)) return open_sqlite(sqlite_path(dictionary), options, why);
  if (!is_on_server(dictionary)) return bad_dictionary(dictionary, why), nullptr;
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
  if (!is_file(settings.dictionary)) return bad_dictionary(settings.dictionary, why);
  name = sqlite_path(settings.dictionary);
  return create_sqlite(name, fill, why);
}

}  // namespace dm
