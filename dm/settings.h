// What the configuration says about the dictionary.
#ifndef DM_SETTINGS_H
#define DM_SETTINGS_H

#include <string>
#include <vector>

#include "dm/problem.h"

namespace dm {

inline constexpr char DEFAULT_DICTIONARY[] = "sqlite:dictionary.db";

struct settings {
  // Names the dictionary: sqlite:PATH, with the path as it stands in tav.conf, or as another engine
  // names it.
  std::string dictionary = DEFAULT_DICTIONARY;
  bool fields_writeable = false;
  bool objects_writeable = false;
  bool has_login = false;
  uint64_t database = 0;    // of the login identity
  int answer_seconds = 60;  // how long a server may be silent
};

// Reads the settings from tav.conf; missing entries have their defaults. False with the reason for
// an entry that cannot be read.
bool read_settings(settings& settings, problem& why);

// The sentence about writes that this entry does not allow.
std::string writes_refused(const char* entry);

// A sentence for each entry above any section or in section [dm] whose key is unknown: it has no
// effect.
std::vector<std::string> unknown_entries();

}  // namespace dm

#endif
