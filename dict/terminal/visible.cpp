#include "dict/terminal/visible.h"

#include <unistd.h>

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

std::ostream& operator<<(std::ostream& out, visible_lines piece) {
  if (!is_terminal(out)) return out << piece.text;
  for (std::string_view rest = piece.text; !rest.empty();) {
    const size_t end = rest.find('\n');
    out << visible{rest.substr(0, end)};
    rest.remove_prefix(end != rest.npos ? end + 1 : rest.size());
    if (end != rest.npos) out << '\n';
  }
  return out;
}

}  // namespace dict
