#include "dict/terminal/visible.h"

#include <unistd.h>

#include <algorithm>
#include <iostream>

#include "dd/visible.h"

namespace dict {

static bool is_terminal(const std::ostream& out) {
  static const bool output = isatty(STDOUT_FILENO) != 0;
  static const bool errors = isatty(STDERR_FILENO) != 0;
  return (&out == &std::cout && output) || (&out == &std::cerr && errors);
}

std::ostream& operator<<(std::ostream& out, visible piece) {
  return is_terminal(out) ? out << dd_visible(piece.text) : out << piece.text;
}

std::string visible_in_output(std::string_view text) {
  return is_terminal(std::cout) ? dd_visible(text) : std::string(text);
}

static std::ostream& put_between(std::ostream& out, std::string_view text, const char* kept) {
  if (!is_terminal(out)) return out << text;
  while (!text.empty()) {
    const size_t end = std::min(text.find_first_of(kept), text.size());
    out << visible{text.substr(0, end)};
    if (end < text.size()) out << text[end];
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return out;
}

std::ostream& operator<<(std::ostream& out, visible_lines piece) {
  return put_between(out, piece.text, "\n");
}

std::ostream& operator<<(std::ostream& out, visible_file piece) {
  return put_between(out, piece.text, "\n\t");
}

}  // namespace dict
