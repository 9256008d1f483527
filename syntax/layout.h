// Where blocks end whose closing brace is missing, told by how their lines are indented.
#ifndef SYNTAX_LAYOUT_H
#define SYNTAX_LAYOUT_H

#include <cstdint>

#include "syntax/parse.h"

namespace syntax {

inline constexpr size_t NO_COLUMN = SIZE_MAX;

// How many blanks stand before the token on its line; NO_COLUMN where something else does.
size_t column_of(const parsing& in, const token& token);

// The column of a block: that of the head, unless its first member does not stand further right.
size_t column_of_block(const parsing& in, const token& head, const token& first);

// Whether the token, which begins a member or a definition or is a closing brace, shows that the
// block of that column ended before it.
bool ends_block(const parsing& in, size_t block, const token& next);

}  // namespace syntax

#endif
