// What was left out of the definitions because it is broken, so that nothing is told that is found
// only because it is missing.
#ifndef LINT_LEFT_OUT_H
#define LINT_LEFT_OUT_H

#include <string>
#include <string_view>
#include <unordered_set>

#include "syntax/tree.h"

namespace lint {

struct left_out {
  std::unordered_set<std::string> parts{};
};

// A part of a definition. Without an attribute the entry, without that too the whole definition. An
// entry has its own name only, whatever is around it: enough to keep quiet about it.
struct part_name {
  syntax::node_kind kind;  // FIELD, INTERFACE, IMPLEMENTATION; BROKEN: nobody knows of what
  std::string_view definition{};
  std::string_view entry{};
  std::string_view attribute{};
};

void leave_out(left_out& from, const part_name& part);
bool is_left_out(const left_out& from, const part_name& part);

}  // namespace lint

#endif
