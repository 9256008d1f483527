// The key of a name: its ASCII capitals made small.
#ifndef DM_FOLDED_H
#define DM_FOLDED_H

#include <string>
#include <string_view>

#include "dd/fold.h"

namespace dm {

inline std::string folded(std::string_view name) {
  std::string key(name);
  for (char& c : key) c = static_cast<char>(dd_fold(c));
  return key;
}

}  // namespace dm

#endif
