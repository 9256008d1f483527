// What changed since a plan was made, of what it touches or depends on.
#ifndef DICT_PLAN_STALE_H
#define DICT_PLAN_STALE_H

#include "dict/plan/plan.h"

namespace dict {

// Appends a sentence for each thing that is not as the plan saw it, with the deployment that
// changed it. Needs an open transaction. False when the dictionary cannot be read.
bool find_stale(dm::store& store, const dm::database_row& database, const plan& made,
                std::vector<std::string>& stale, dm::problem& why);

// Whether everything is as the plan would make it. False in the result when it is not; false with
// the reason when the dictionary cannot be read.
bool is_applied(dm::store& store, const dm::database_row& database, const plan& made, bool& applied,
                dm::problem& why);

// The number of the deployment that applied the plan; 0 where the journal does not tell.
bool find_application(dm::store& store, const plan& made, int64_t& deployment, dm::problem& why);

// Refuses a dictionary that is not the plan's, or whose journal is not the one that the plan saw.
bool is_of(const plan& made, snapshot& on, dm::problem& why);

}  // namespace dict

#endif
