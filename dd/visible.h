// Text that somebody wrote, for terminals and logs: control characters (U+0000 to 001F and 007F to
// 009F) and bytes that are no UTF-8 are written out as codes, because a terminal would obey them.
#ifndef DD_VISIBLE_H
#define DD_VISIBLE_H

#include <string>
#include <string_view>

struct dd_visible_piece {
  std::string_view plain;  // to be shown as it is
  char code[8];            // the next character, written out: \n \t \x1b \u009b \xff; empty: none
};

// Takes the start of the text off: all up to and including the first character to be written out.
dd_visible_piece dd_take_visible(std::string_view& text);

// The whole text, with such characters written out.
std::string dd_visible(std::string_view text);

#endif
