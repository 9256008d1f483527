// Sentences from rows of text.
#ifndef LINT_FILL_H
#define LINT_FILL_H

#include <algorithm>
#include <string>
#include <string_view>

namespace lint {

// The text with each {name} replaced by what `part` gives for it. A brace before a blank is one of
// the language and stays.
template <class Part>
std::string filled(std::string_view text, Part part) {
  std::string sentence;
  while (!text.empty()) {
    const size_t open = std::min(text.find('{'), text.size());
    sentence += text.substr(0, open);
    text.remove_prefix(open);
    const size_t close = text.find('}');
    if (close == text.npos || text[1] == ' ' || text[1] == '"') {
      sentence += text.substr(0, std::min<size_t>(text.size(), 1));
      text.remove_prefix(std::min<size_t>(text.size(), 1));
      continue;
    }
    sentence += part(text.substr(1, close - 1));
    text.remove_prefix(close + 1);
  }
  return sentence;
}

}  // namespace lint

#endif
