// Texts that may hold anything, on their way to standard output or error: on a terminal made
// visible (dd/visible.h), elsewhere as they are.
//
//   std::cout << "Wrote backup " << visible{file} << ".\n";
#ifndef DICT_TERMINAL_VISIBLE_H
#define DICT_TERMINAL_VISIBLE_H

#include <ostream>
#include <string>
#include <string_view>

namespace dict {

struct visible {
  std::string_view text;
};
std::ostream& operator<<(std::ostream& out, visible piece);

// The text as `visible` would write it to standard output.
std::string visible_in_output(std::string_view text);

// The same for a text whose line ends are the program's own.
struct visible_lines {
  std::string_view text;
};
std::ostream& operator<<(std::ostream& out, visible_lines piece);

// The same for a whole file: its tabs stay, too.
struct visible_file {
  std::string_view text;
};
std::ostream& operator<<(std::ostream& out, visible_file piece);

}  // namespace dict

#endif
