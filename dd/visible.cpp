#include "dd/visible.h"

#include <cstdio>

#include "dd/utf8.h"

static bool is_c1(std::string_view character) {
  return character[0] == '\xc2' && static_cast<unsigned char>(character[1]) < 0xa0;
}

// How many bytes the first character has if it can be shown as it is; 0 if it must be written out.
static size_t shown_length(std::string_view text) {
  const char first = text[0];
  if (first >= ' ' && first < '\x7f') return 1;
  const size_t length = dd_utf8_length(text.data(), text.size());
  return length < 2 || is_c1(text) ? 0 : length;
}

// Writes out the first character, as a code; gives how many bytes of the text that was.
static size_t write_code(std::string_view text, char (&code)[8]) {
  const bool is_long = dd_utf8_length(text.data(), text.size()) == 2;
  const unsigned byte = static_cast<unsigned char>(text[is_long ? 1 : 0]);
  if (text[0] == '\n' || text[0] == '\t') {
    std::snprintf(code, sizeof code, "\\%c", text[0] == '\n' ? 'n' : 't');
  } else {
    std::snprintf(code, sizeof code, is_long ? "\\u%04x" : "\\x%02x", byte);
  }
  return is_long ? 2 : 1;
}

dd_visible_piece dd_take_visible(std::string_view& text) {
  size_t plain = 0;
  while (plain < text.size()) {
    const size_t length = shown_length(text.substr(plain));
    if (length == 0) break;
    plain += length;
  }
  dd_visible_piece piece{text.substr(0, plain), ""};
  text.remove_prefix(plain);
  if (!text.empty()) text.remove_prefix(write_code(text, piece.code));
  return piece;
}

std::string dd_visible(std::string_view text) {
  std::string result;
  while (!text.empty()) {
    const dd_visible_piece piece = dd_take_visible(text);
    result.append(piece.plain).append(piece.code);
  }
  return result;
}
