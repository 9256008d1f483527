// Text that somebody wrote, for terminals and logs: control characters (U+0000 to 001F and 007F to
// 009F) and bytes that are no UTF-8 are written out, because a terminal takes them for orders.
#ifndef DD_VISIBLE_H
#define DD_VISIBLE_H

#include <string>
#include <string_view>

struct dd_visible_piece {
  std::string_view plain;  // stands as it is
  char code[8];            // what comes next, written out: \n \t \x1b \u009b \xff; empty at the end
};

// Takes what the text begins with, up to and with its first character that is written out.
dd_visible_piece dd_take_visible(std::string_view& text);

std::string dd_visible(std::string_view text);

#endif
