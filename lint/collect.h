// The findings of a run as they come.
#ifndef LINT_COLLECT_H
#define LINT_COLLECT_H

#include "lint/lint.h"
#include "lint/rules.h"

namespace lint {

// The first MOST_TOLD are kept, with the level of their rule; others are counted.
void tell(result& to, finding found);
// Puts them in the order of their places.
void put_in_order(result& to);

}  // namespace lint

#endif
