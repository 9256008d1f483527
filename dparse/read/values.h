// The small values inside attributes.
#ifndef DPARSE_READ_VALUES_H
#define DPARSE_READ_VALUES_H

#include "dparse/read/lexer.h"

namespace dparse {

// = "text" "more text";  The value, \n and \t made real: 1, or -1 with a message.
int read_string(FILE* stream, token_text& value);

// Converts leading decimal digits (blanks and a sign before them are allowed), cut to 32 bits; says
// whether there were any.
bool to_number(const char* text, int32_t& number);

// = 7;  A plain word (else `expected`), whose number, unsigned, is at most `limit` (else
// `refused`): 1, or -1 with that message. Both messages show the word.
int read_bare_number(FILE* stream, uint32_t limit, message expected, message refused,
                     int32_t& number);

}  // namespace dparse

#endif
