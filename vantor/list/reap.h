// Freeing lists, however deeply they are nested: without recursion, without allocating.
#ifndef VANTOR_LIST_REAP_H
#define VANTOR_LIST_REAP_H

#include "vantor/list/node.h"

namespace vantor {

// Gives up one owner of a body, which `handle` showed (null: an element that was never handed out).
// The last owner frees the fields. The handles of elements that `handle` handed out are freed in
// any case; `handle` itself is not.
void disown(tav_node* node, const tav_flist_t* handle) noexcept;

struct reap_node {
  void operator()(tav_node* node) const { disown(node, nullptr); }
};

}  // namespace vantor

#endif
