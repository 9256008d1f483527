// Tokens of the definition language: a keyword has the number of its row in dd/keywords.h.
//
// The token numbers stand outside the namespace, where dparseGetToken gives them; a macro makes
// those of the keywords, whose names begin like the others.
#ifndef DPARSE_TOKENS_H
#define DPARSE_TOKENS_H

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "dd/keywords.h"
#include "dd/longest_text.h"

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

namespace dparse {

enum { TOKEN_NUMBERS = DD_KEYWORD_NUMBERS };  // all token numbers are below

inline constexpr size_t TEXT_SIZE = DD_LONGEST_TEXT + 1;  // of token texts and values
inline constexpr size_t KEYWORD_SIZE = 24;                // holds every keyword

struct token_row {
  int number;
  const char* text;
};

// The number of the keyword that equals the word without regard to case, or DPARSE_TOKEN_WORD.
// Costs about one comparison.
int keyword_number(const char* word, size_t length);
// The same for a word of at least one character, terminated, in a buffer of KEYWORD_SIZE or more.
int padded_keyword_number(const char* word, size_t length);
// The text of a keyword; empty for other tokens.
std::string_view keyword_text(int token);
// The type code that a type keyword stands for; TAV_FLDT_UNUSED for UINT and for all that is no
// type.
int32_t type_code_of(int token);

}  // namespace dparse

// The keywords in stored order, ended by a row {0, null}.
extern const dparse::token_row token_table[];

#endif
