// What the configuration says about the dictionary.
#ifndef DM_SETTINGS_H
#define DM_SETTINGS_H

#include <string>
#include <vector>

#include "dm/problem.h"

namespace dm {

inline constexpr char DEFAULT_DICTIONARY[] = "sqlite:dictionary.db";

struct settings {
  // sqlite:PATH, with the path as it stands in the file; or another engine's.
  std::string dictionary = DEFAULT_DICTIONARY;
  bool fields_writeable = false;
  bool objects_writeable = false;
  bool has_login = false;
  uint64_t database = 0;    // of the login identity
  int answer_seconds = 60;  // how long a server may be silent
};

// False with the reason for an entry that cannot be read; a missing one has its default.
bool read_settings(settings& settings, problem& why);

// A sentence for each entry that stands where the data manager looks, and that nothing looks for.
std::vector<std::string> unknown_entries();

}  // namespace dm

#endif
