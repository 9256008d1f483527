// Taking lists apart, however deeply they are nested.
#ifndef VANTOR_LIST_REAP_H
#define VANTOR_LIST_REAP_H

#include "vantor/list/node.h"

namespace vantor {

// Gives up one owner of a body, which may have been `handle` (null: an element without a handle).
// With the last owner the fields go; the handle's own handles go in any case. The handle itself
// stays.
void disown(tav_node* node, const tav_flist_t* handle) noexcept;

struct reap_node {
  void operator()(tav_node* node) const { disown(node, nullptr); }
};

}  // namespace vantor

#endif
