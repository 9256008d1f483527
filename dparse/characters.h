// Characters, looked up in tables: no locale, byte 255 is a character like others.
#ifndef DPARSE_CHARACTERS_H
#define DPARSE_CHARACTERS_H

#include <array>
#include <cstdio>
#include <string_view>

#include "dparse/tokens.h"

namespace dparse {

enum : unsigned char {
  BLANK = 1,  // white space but the newline
  ENDS_WORD = 2,
  ENDS_STRING = 4,
};

// By character plus one, so that end of file (-1) has a place too. A NUL byte belongs to no word
// and no string: texts could not carry it, and what follows it would be lost in silence.
inline constexpr auto CHARACTER_CLASSES = [] {
  std::array<unsigned char, 257> classes{};
  const auto mark = [&classes](int c, int bits) {
    auto& entry = classes[static_cast<size_t>(c + 1)];
    entry = static_cast<unsigned char>(entry | bits);
  };
  for (const char c : std::string_view(" \t\v\f\r")) mark(c, BLANK | ENDS_WORD);
  for (const char c : std::string_view("\n;={}")) mark(c, ENDS_WORD);
  for (const int c : {EOF, 0}) mark(c, ENDS_WORD | ENDS_STRING);
  for (const char c : std::string_view("\"\n")) mark(c, ENDS_STRING);
  return classes;
}();

// Whether the character is of one of the classes.
constexpr bool is_any_of(int c, unsigned char classes) {
  return (CHARACTER_CLASSES[static_cast<size_t>(c + 1)] & classes) != 0;
}
constexpr bool is_any_of(char c, unsigned char classes) {
  return is_any_of(int{static_cast<unsigned char>(c)}, classes);
}

// The token that a character starts: DPARSE_TOKEN_WORD, DPARSE_TOKEN_STRING, the number of one that
// is a token alone, or DPARSE_TOKEN_EMPTY for a character that starts none.
inline constexpr auto TOKEN_STARTS = [] {
  std::array<unsigned char, 256> starts{};
  for (int c = 0; c < 256; ++c)
    starts[static_cast<size_t>(c)] =
        is_any_of(c, ENDS_WORD) ? DPARSE_TOKEN_EMPTY : DPARSE_TOKEN_WORD;
  starts['#'] = DPARSE_TOKEN_EMPTY;
  starts['"'] = DPARSE_TOKEN_STRING;
  starts['{'] = DPARSE_KEY_OPEN;
  starts['}'] = DPARSE_KEY_CLOSE;
  starts['='] = DPARSE_KEY_EQUALS;
  starts[';'] = DPARSE_KEY_SEMICOLON;
  return starts;
}();

inline int token_started_by(char c) {
  return TOKEN_STARTS[static_cast<unsigned char>(c)];
}

}  // namespace dparse

#endif
