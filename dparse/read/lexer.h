// A token with its text, and the small steps that the grammar is written in.
#ifndef DPARSE_READ_LEXER_H
#define DPARSE_READ_LEXER_H

#include "dparse/read/reader.h"

namespace dparse {

struct token_text {
  size_t length;
  char text[TEXT_SIZE];
};

// Reads the next token; gives its number.
int next_token(FILE* stream, token_text& token);
// The same, faster where a string stands there and slower where not.
int next_string(FILE* stream, token_text& token);
// The same, whatever stands there and however little of it has been read ahead, but slower.
int next_by_character(FILE* stream, token_text& token);
// Reads the next token; says whether it has that number.
inline bool take(FILE* stream, token_text& token, int number) {
  return next_token(stream, token) == number;
}
// Takes ";" where it is next and has been read ahead; says whether it did.
bool take_semicolon_ahead(FILE* stream);
// Each reads the next token, which must be that one: 1, or -1 with its message.
int expect_equals(FILE* stream);
int expect_semicolon(FILE* stream);
int expect_open(FILE* stream);
// The failure where "{" is missing.
int no_opening_brace();

}  // namespace dparse

#endif
