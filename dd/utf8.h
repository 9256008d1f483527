// The characters of UTF-8 texts.
#ifndef DD_UTF8_H
#define DD_UTF8_H

#include <cstddef>
#include <string_view>

// How many bytes the character at the start of the text has; 0 where they are not valid UTF-8 or
// more than `left`. A text that ends with a NUL byte needs no exact `left`: no character of several
// bytes contains a NUL.
size_t dd_utf8_length(const char* text, size_t left = 4);

// So many bytes of the text's start at most, without a part of a character at their end.
std::string_view dd_utf8_cut(std::string_view text, size_t most);

#endif
