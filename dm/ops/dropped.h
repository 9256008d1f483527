// What another session has deleted, or renamed, since this one fetched: the operations would make
// it anew, unseen.
#ifndef DM_OPS_DROPPED_H
#define DM_OPS_DROPPED_H

#include "dm/folded.h"
#include "dm/journal/read.h"
#include "dm/session.h"

namespace dm {

// By thing_key. Reads the journal only where the database's counter shows that another session has
// written since the fetch. False when the store fails.
bool find_dropped(session& session, const database_row& database, int64_t seen_database::*fetched,
                  key_set& dropped, problem& why);

// Whether it is among them: mostly nothing is.
inline bool was_dropped(const key_set& dropped, change_of what, const char* name) {
  return !dropped.empty() && dropped.count(thing_key(what, name)) != 0;
}

inline constexpr char WAS_DROPPED[] =
    "was deleted or renamed by another session since this one fetched it; run again";

}  // namespace dm

#endif
