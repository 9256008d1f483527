// What another session has deleted, or renamed, since this one fetched: the operations would make
// it anew, unseen.
#ifndef DM_OPS_DROPPED_H
#define DM_OPS_DROPPED_H

#include "dm/folded.h"
#include "dm/session.h"

namespace dm {

// By thing_key. Reads the journal only where the database's counter shows that another session has
// written since the fetch. False when the store fails.
bool find_dropped(session& session, const database_row& database, int64_t seen_database::*fetched,
                  key_set& dropped, problem& why);

inline constexpr char WAS_DROPPED[] =
    "was deleted or renamed by another session since this one fetched it; run again";

}  // namespace dm

#endif
