// The changes that lead back to what was before a deployment.
#ifndef DM_CHANGES_BACK_H
#define DM_CHANGES_BACK_H

#include "dm/changes/changes.h"

namespace dm {

// What gives the things that the deployment changed in the database the states that they had before
// it. One that somebody else has changed since, and that is not as the deployment left it, is
// refused. Needs an open transaction of a dictionary that has a journal. False with the reason when
// the store fails or the journal does not reach back so far (TAV_ERR_NOT_FOUND).
bool find_undone(store& store, const database_row& database, int64_t deployment,
                 std::vector<wanted_thing>& wanted, std::vector<refused_change>& refused,
                 problem& why);

// Notes for each refusal because of a use which deployment behind that one made the use, and says
// so in its sentence. Needs an open transaction as well.
bool find_makers(store& store, const database_row& database, int64_t deployment,
                 std::vector<refused_change>& refused, problem& why);

}  // namespace dm

#endif
