#include "dm/problem.h"

#include <algorithm>

namespace dm {

static constexpr size_t LONGEST_QUOTED = 200;

std::string join(std::initializer_list<std::string_view> pieces) {
  std::string text;
  for (const std::string_view piece : pieces) text += piece;
  return text;
}

std::string quoted(std::string_view text) {
  std::string result = "'";
  const auto continues = [&](size_t at) {
    return (static_cast<unsigned char>(text[at]) >> 6) == 2;
  };
  size_t end = std::min(text.size(), LONGEST_QUOTED);
  while (end > 0 && end < text.size() && continues(end)) --end;  // never within a character
  for (const char c : text.substr(0, end)) {
    const auto byte = static_cast<unsigned char>(c);
    result += byte < ' ' || byte == 127 ? '?' : c;
  }
  if (text.size() > end) result += "...";
  return result + "'";
}

}  // namespace dm
