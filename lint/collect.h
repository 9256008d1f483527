// The findings of a run as they come.
#ifndef LINT_COLLECT_H
#define LINT_COLLECT_H

#include <algorithm>

#include "lint/lint.h"
#include "lint/rules.h"

namespace lint {

// The first MOST_TOLD are kept, with the level of their rule; others are counted.
void tell(result& to, finding found);
// Whether what comes is counted only.
inline bool is_full(const result& to) {
  return to.told.size() >= MOST_TOLD;
}
inline size_t room_in(const result& to) {
  return MOST_TOLD - std::min(to.told.size(), MOST_TOLD);
}
// Puts them in the order of their places.
void put_in_order(result& to);

}  // namespace lint

#endif
