// Texts are UTF-8.
#ifndef DD_UTF8_H
#define DD_UTF8_H

#include <cstddef>

// The bytes of the character that the text begins with, at most `left`; 0 where it begins with
// none. Of a text that a NUL byte ends, the NUL is no part of a longer character, so any `left`
// will do.
size_t dd_utf8_length(const char* text, size_t left = 4);

#endif
