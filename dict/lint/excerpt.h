// The part of a line that a finding is about, as people see it.
#ifndef DICT_LINT_EXCERPT_H
#define DICT_LINT_EXCERPT_H

#include <string>
#include <string_view>

namespace dict {

struct excerpt {
  std::string line;   // tabs as blanks, control characters written out, cut where it is long
  std::string caret;  // blanks, and "^" and "~" below what is marked
};

// Of `length` bytes from `start`, as far as they are on one line.
excerpt excerpt_of(std::string_view text, size_t start, size_t length);

// The text with the characters that turn the direction of writing written out: they make a text
// look like another one.
std::string in_one_direction(std::string_view text);

}  // namespace dict

#endif
