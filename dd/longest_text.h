// The most bytes of a text in the definition language, where a tab and a newline take two each.
#ifndef DD_LONGEST_TEXT_H
#define DD_LONGEST_TEXT_H

#include <cstddef>

inline constexpr size_t DD_LONGEST_TEXT = 2047;

#endif
