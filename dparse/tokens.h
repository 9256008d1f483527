// Tokens of the definition language: a keyword has the number of its row in dd/keywords.h.
#ifndef DPARSE_TOKENS_H
#define DPARSE_TOKENS_H

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "dd/keywords.h"

#define DPARSE_ENUM_ROW(name, text, number) DPARSE_KEY_##name = number,
enum { DD_KEYWORDS(DPARSE_ENUM_ROW) };
#undef DPARSE_ENUM_ROW

// The tokens that have no keyword.
enum {
  DPARSE_TOKEN_EMPTY = 0,        // a word without a character: a NUL byte stands there
  DPARSE_TOKEN_WORD = 26,        // a word that is no keyword
  DPARSE_TOKEN_EOF = 27,         // end of input
  DPARSE_TOKEN_BAD_STRING = 28,  // a quoted string that is not closed, or too long
  DPARSE_TOKEN_STRING = 29,      // a quoted string
};
enum { DPARSE_TOKEN_NUMBERS = DD_KEYWORD_NUMBERS };  // all token numbers are below

inline constexpr size_t DPARSE_TEXT_SIZE = 2048;   // of token texts and values, terminator included
inline constexpr size_t DPARSE_KEYWORD_SIZE = 24;  // holds every keyword

struct dparse_token_row {
  int number;
  const char* text;
};
// The keywords in stored order, ended by a row {0, null}.
extern const dparse_token_row token_table[];

// The number of the keyword that equals the word without regard to case, or DPARSE_TOKEN_WORD.
// Costs about one comparison.
int dparse_keyword(const char* word, size_t length);
// The same for a word of at least one character, terminated, in a buffer of DPARSE_KEYWORD_SIZE or
// more.
int dparse_padded_keyword(const char* word, size_t length);
// The text of a keyword; empty for other tokens.
std::string_view dparse_keyword_text(int token);
// The type code that a type keyword stands for; TAV_FLDT_UNUSED for UINT and for all that is no
// type.
int32_t dparse_type_code(int token);

#endif
