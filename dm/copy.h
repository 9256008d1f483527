// A dictionary's content from one store into another.
#ifndef DM_COPY_H
#define DM_COPY_H

#include <functional>

#include "dm/store.h"

namespace dm {

// Copies every row with its stamp, and the counters. `from` reads in an open transaction, so all of
// it is one snapshot; `to` is empty, and what is written there is the caller's to commit or undo.
// `copied` is called after each row.
bool copy_dictionary(store& from, store& to, const std::function<void()>& copied, problem& why);

}  // namespace dm

#endif
