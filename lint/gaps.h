// What lies between two tokens of a tree.
#ifndef LINT_GAPS_H
#define LINT_GAPS_H

#include "syntax/tree.h"

namespace lint {

// Where the blanks and comments begin among which the byte stands; npos where it is part of a
// token.
uint64_t gap_before(const syntax::tree& tree, uint64_t byte);

}  // namespace lint

#endif
