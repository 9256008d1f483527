// The engines that can keep a dictionary: how a text is known as the name of one of theirs, and
// what opens and makes it. The first one that claims a text has it.
#ifndef DM_ENGINE_H
#define DM_ENGINE_H

#include "dm/settings.h"
#include "dm/store.h"

namespace dm {

struct engine {
  // Whether the text is meant for this engine, by the form that it has.
  bool (*claims)(const std::string& dictionary);
  // Whether such a text can be the name of a dictionary.
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
