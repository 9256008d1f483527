#include "lint/rules/tokens.h"

#include <algorithm>

#include "lint/rules.h"

namespace lint {

static constexpr size_t LONGEST = 80;  // bytes

static bool is_blank(char c) {
  return c == ' ' || (c >= '\t' && c <= '\r');
}

static bool is_of_word(char c) {
  return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

// Looks no farther than it takes: a line may be the whole file.
static std::string_view line_around(std::string_view text, size_t at) {
  const size_t first = at - std::min(at, LONGEST / 2);
  const std::string_view before = text.substr(first, at - first);
  const size_t start = first + before.rfind('\n') + 1;  // npos + 1 is 0
  return text.substr(start, std::min(text.substr(start, LONGEST).find('\n'), LONGEST));
}

static std::string with_single_blanks(std::string_view text) {
  std::string result;
  for (const char c : text.substr(0, LONGEST)) {
    if (!is_blank(c)) {
      result += c;
    } else if (!result.empty() && result.back() != ' ') {
      result += ' ';
    }
  }
  if (!result.empty() && result.back() == ' ') result.pop_back();
  return result;
}

void name_tokens(const std::vector<source>& sources, std::vector<finding>& told) {
  for (finding& each : told) {
    if (find_rule(each.rule)->from != origin::SYNTAX) continue;
    const std::string_view text = sources[each.where.source].tree.text;
    const size_t at = std::min<size_t>(each.where.start, text.size());
    const std::string_view token = text.substr(at, each.where.length);
    const bool is_word = std::ranges::any_of(token.substr(0, LONGEST), is_of_word);
    each.subject += ", at " + with_single_blanks(is_word ? token : line_around(text, at));
  }
}

}  // namespace lint
