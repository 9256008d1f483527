// What changed since a plan was made, of what it touches or depends on.
#ifndef DICT_PLAN_STALE_H
#define DICT_PLAN_STALE_H

#include "dict/plan/plan.h"
#include "dm/changes/changes.h"

namespace dict {

// What the dictionary is to a plan.
struct standing {
  bool is_done = false;     // everything is as the plan would make it
  int64_t application = 0;  // the deployment that applied it; 0 where the journal has none
  std::vector<dm::refused_change> stale{};  // where it is not done: why it cannot be deployed
};

// Has a sentence for each thing that is not as the plan saw it, or, where it was applied, not as
// that left it; with the deployment that changed it. Needs an open transaction. False when the
// dictionary cannot be read.
bool find_standing(dm::store& store, const dm::database_row& database, const plan& made,
                   standing& result, dm::problem& why);

// Refuses a dictionary that is not the plan's, or whose journal is not the one that the plan saw.
bool is_of(const plan& made, snapshot& on, dm::problem& why);

}  // namespace dict

#endif
