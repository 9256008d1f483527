// The findings of a run as they come.
#ifndef LINT_COLLECT_H
#define LINT_COLLECT_H

#include <algorithm>

#include "lint/lint.h"
#include "lint/rules.h"

namespace lint {

// The first MOST_TOLD are kept; others are counted, unless their rule is switched off.
void tell(result& to, finding found);
void count_untold(result& to, std::string_view rule, level told);
inline size_t room_in(const result& to) {
  return MOST_TOLD - std::min(to.told.size() - to.off, MOST_TOLD);
}
// Whether what comes is counted only.
inline bool is_full(const result& to) {
  return room_in(to) == 0;
}
// Puts them in the order of their places.
void put_in_order(result& to);

}  // namespace lint

#endif
