// Whether what people see is coloured.
#ifndef DICT_TERMINAL_COLOUR_H
#define DICT_TERMINAL_COLOUR_H

#include <unistd.h>

#include <cstdlib>
#include <string>

namespace dict {

// "always", "never", or "auto": on a terminal, unless NO_COLOR says no.
inline bool is_coloured(const std::string& when) {
  if (when != "auto") return when == "always";
  const char* refused = std::getenv("NO_COLOR");
  return isatty(STDOUT_FILENO) && (refused == nullptr || *refused == '\0');
}

}  // namespace dict

#endif
