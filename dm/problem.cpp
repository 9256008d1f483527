#include "dm/problem.h"

namespace dm {

static constexpr size_t LONGEST_QUOTED = 200;

std::string join(std::initializer_list<std::string_view> pieces) {
  std::string text;
  for (const std::string_view piece : pieces) text += piece;
  return text;
}

std::string quoted(std::string_view text) {
  std::string result = "'";
  for (const char c : text.substr(0, LONGEST_QUOTED)) {
    const auto byte = static_cast<unsigned char>(c);
    result += byte < ' ' || byte == 127 ? '?' : c;
  }
  if (text.size() > LONGEST_QUOTED) result += "...";
  return result + "'";
}

}  // namespace dm
