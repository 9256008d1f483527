// Deploying a plan whose definitions were judged.
#ifndef DICT_PLAN_DEPLOY_H
#define DICT_PLAN_DEPLOY_H

#include "dict/plan/stale.h"

namespace dict {

// Whether there is something to deploy, and it may be.
bool can_deploy(const standing& now);

// Whether the definitions come to what the plan says; false with the reason.
bool results_fit(const plan& made, const dm::deployment_result& result, dm::problem& why);

// Begins to write, finds out how the plan stands now, and deploys exactly that in one transaction.
// Where it can no longer be deployed (`now`), nothing is, and that is no failure. False with the
// reason.
bool deploy_plan(snapshot& on, const plan& made, const judged& files, standing& now,
                 dm::problem& why);

}  // namespace dict

#endif
