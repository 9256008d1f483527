// A token with its text, and the small steps that the grammar is written in.
#ifndef DPARSE_READ_LEXER_H
#define DPARSE_READ_LEXER_H

#include "dparse/read/reader.h"

struct dparse_token {
  size_t length;
  char text[DPARSE_TEXT_SIZE];
};

// Reads the next token; gives its number.
int dparse_next(FILE* stream, dparse_token& token);
// The same, faster where a string stands there and slower where not.
int dparse_next_string(FILE* stream, dparse_token& token);
// The same, whatever stands there and however little of it has been read ahead, but slower.
int dparse_next_by_character(FILE* stream, dparse_token& token);
// Reads the next token; says whether it has that number.
inline bool dparse_take(FILE* stream, dparse_token& token, int number) {
  return dparse_next(stream, token) == number;
}
// Takes ";" where it is next and has been read ahead; says whether it did.
bool dparse_take_semicolon_ahead(FILE* stream);
// Each reads the next token, which must be that one: 1, or -1 with its message.
int dparse_expect_equals(FILE* stream);
int dparse_expect_semicolon(FILE* stream);
int dparse_expect_open(FILE* stream);
// The failure where "{" is missing.
int dparse_no_open();

#endif
