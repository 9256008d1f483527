// Copying a dictionary's content from one store into another.
#ifndef DM_COPY_H
#define DM_COPY_H

#include <functional>

#include "dm/store.h"

namespace dm {

// Copies every row with its stamp, the counters, and the journal as it is. Calls `copied` after
// each row. Both stores have an open transaction, which the caller ends: that of `from` makes the
// copy one snapshot; `to` is empty. False with the reason; `to` may then hold a part.
bool copy_dictionary(store& from, store& to, const std::function<void()>& copied, problem& why);

// What follows a copy: for a backup the identity, because it is the same dictionary; for a restored
// one an identity of its own, and a record of that in its journal.
bool copy_identity(store& from, store& to, problem& why);
bool begin_restored(store& from, store& to, problem& why);

}  // namespace dm

#endif
