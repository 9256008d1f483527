// The engines that can keep a dictionary. The text that names a dictionary goes to the first engine
// that claims it (dm/open.cpp).
#ifndef DM_ENGINE_H
#define DM_ENGINE_H

#include "dm/settings.h"
#include "dm/store.h"

namespace dm {

struct engine {
  // Whether the text has the form of this engine's names ("sqlite:..."), valid or not.
  bool (*claims)(const std::string& dictionary);
  // Whether a text that the engine claims is valid; others are refused.
  bool (*takes)(const std::string& dictionary);
  // Whether a text that is meant for something else looks like the name of one of its dictionaries,
  // and so may hold a password.
  bool (*resembles)(const std::string& text);
  // As open_dictionary and create_dictionary, for a text that the engine takes.
  store_owner (*open)(const settings& settings, const open_options& options, problem& why);
  bool (*make)(const settings& settings, const fill_store& fill, std::string& name, problem& why);
};

extern const engine SQLITE_ENGINE;
extern const engine POSTGRES_ENGINE;

}  // namespace dm

#endif
