// Patterns for whole names: POSIX extended regular expressions.
//
// Matching never goes back in a name, so that its time is bounded by the pattern's size times the
// name's.
#ifndef LINT_RULES_PATTERN_H
#define LINT_RULES_PATTERN_H

#include <regex.h>

#include <memory>
#include <string>
#include <string_view>

namespace lint {

struct name_pattern {
  std::string text{};
  std::shared_ptr<regex_t> compiled{};
};

// False where the text is no such expression, is a large one (counted repetitions counted), or has
// a backslash before a letter or digit, which other dialects take for a class or a reference.
bool read_pattern(const std::string& text, name_pattern& pattern);

bool fits(const name_pattern& pattern, std::string_view name);

}  // namespace lint

#endif
