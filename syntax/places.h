// The lines of a tree's text.
#ifndef SYNTAX_PLACES_H
#define SYNTAX_PLACES_H

#include "syntax/tree.h"

namespace syntax {

// Counts the lines anew for all blocks behind that byte.
void count_lines(tree& tree, uint64_t from);

}  // namespace syntax

#endif
