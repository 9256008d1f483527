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

// Text that anybody may have written, on one line and for any terminal: control characters, bytes
// that are no UTF-8, and characters that turn the direction of writing, which make a text look like
// another one, are written out.
std::string written_out(std::string_view text);

// The same of what rapidjson leaves as it is, in JSON's own codes: the page means what it meant.
std::string written_out_in_json(std::string_view page);

}  // namespace dict

#endif
