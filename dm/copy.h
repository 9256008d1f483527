// Copying a dictionary's content from one store into another.
#ifndef DM_COPY_H
#define DM_COPY_H

#include <functional>

#include "dm/store.h"

namespace dm {

// Copies every row with its stamp, and the counters. Calls `copied` after each row. Both stores
// have an open transaction, which the caller ends: that of `from` makes the copy one snapshot; `to`
// is empty. False with the reason; `to` may then hold a part.
bool copy_dictionary(store& from, store& to, const std::function<void()>& copied, problem& why);

}  // namespace dm

#endif
