// Dictionaries on a server, as the programs see them; all the rest is in the module, which is
// loaded here.
#include "dm/engine.h"
#include "dd/fold.h"
#include "dm/postgres/module.h"

namespace dm {

// A URL, or a string of keys and values.
static bool is_address(const std::string& dictionary) {
  for (const std::string_view scheme : {"postgresql://", "postgres://"}) {
    if (dictionary.compare(0, scheme.size(), scheme) == 0) return true;
  }
  return dictionary.find('=') != std::string::npos;
}

static bool resembles_address(const std::string& text) {
  const auto has = [&](const char* part) { return text.find(part) != text.npos; };
  return has("://") || has("password=") || dd_equal(text.substr(0, 10).c_str(), "postgresql") ||
         dd_equal(text.substr(0, 9).c_str(), "postgres:");
}

// What is wrong with an address only the server's client library can tell.
static bool takes_all(const std::string&) {
  return true;
}

static open_options completed(open_options options, const settings& settings) {
  if (options.answer_milliseconds == 0)
    options.answer_milliseconds = settings.answer_seconds * 1000;
  return options;
}

static store_owner open_on_server(const settings& settings, const open_options& options,
                                  problem& why) {
  const postgres_module* module = load_postgres(why);
  if (module == nullptr) return nullptr;
  return module->open(settings.dictionary, completed(options, settings), why);
}

static bool make_on_server(const settings& settings, const fill_store& fill, std::string& name,
                           problem& why) {
  const postgres_module* module = load_postgres(why);
  if (module == nullptr) return false;
  const store_owner made = module->begin_new(settings.dictionary, completed({}, settings), why);
  if (made == nullptr) return false;
  name = made->calls->name(made.get());
  return fill(*made, why) && made->calls->commit(made.get(), why);
}

const engine POSTGRES_ENGINE = {
    .claims = is_address,
    .takes = takes_all,
    .resembles = resembles_address,
    .open = open_on_server,
    .make = make_on_server,
};

}  // namespace dm
