// The length of a UTF-8 character.
#ifndef DD_UTF8_H
#define DD_UTF8_H

#include <cstddef>

// How many bytes the character at the start of the text has; 0 where they are not valid UTF-8 or
// more than `left`. A text that ends with a NUL byte needs no exact `left`: no character of several
// bytes contains a NUL.
size_t dd_utf8_length(const char* text, size_t left = 4);

#endif
