// The most bytes of a text in the definition language, where a tab and a newline take two each; and
// of the name of a table or column.
#ifndef DD_LONGEST_TEXT_H
#define DD_LONGEST_TEXT_H

#include <cstddef>

inline constexpr size_t DD_LONGEST_TEXT = 2047;
inline constexpr size_t DD_LONGEST_STORAGE_NAME = 30;

#endif
