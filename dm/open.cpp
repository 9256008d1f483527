#include "dm/open.h"

#include <algorithm>

#include "dm/engine.h"
#include "vantor/binding.h"

namespace dm {

static constexpr const engine* ENGINES[] = {&SQLITE_ENGINE, &POSTGRES_ENGINE};

// The sentence does not repeat the text: any part of it may be a password.
static const engine* bad_dictionary(problem& why) {
  why.code = TAV_ERR_BAD_CONF;
  why.sentence = join({"Configuration ", quoted(tav_conf_file()),
                       ": entry 'dictionary' is neither sqlite:PATH nor "
                       "postgresql://HOST/DATABASE; it is not repeated here, because it may hold "
                       "a password."});
  return nullptr;
}

// The engine for the text; null with the reason where the text names no dictionary.
static const engine* engine_of(const std::string& dictionary, problem& why) {
  for (const engine* each : ENGINES) {
    if (!each->claims(dictionary)) continue;
    return each->takes(dictionary) ? each : bad_dictionary(why);
  }
  return bad_dictionary(why);
}

bool is_misplaced_secret(const std::string& text) {
  const auto resembles = [&](const engine* each) { return each->resembles(text); };
  return std::any_of(std::begin(ENGINES), std::end(ENGINES), resembles) &&
         tav_text_holds_password(text);
}

store_owner open_dictionary(const settings& settings, const open_options& options, problem& why) {
  const engine* engine = engine_of(settings.dictionary, why);
  return engine != nullptr ? engine->open(settings, options, why) : nullptr;
}

bool create_dictionary(const settings& settings, const fill_store& fill, std::string& name,
                       problem& why) {
  const engine* engine = engine_of(settings.dictionary, why);
  return engine != nullptr && engine->make(settings, fill, name, why);
}

}  // namespace dm
