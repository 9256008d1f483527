// Handles: what callers hold of a list or of an element that was handed out.
//
// Bodies may be shared, handles never are. A handle leads to its parent through the array that it
// stands in, so that a write can first make sure that the whole way down from the root is its own.
#ifndef VANTOR_HANDLE_H
#define VANTOR_HANDLE_H

#include "vantor/node.h"

struct tav_flist {
  tav_node* node;
  vantor::element_array* array;  // where it is an element; null: a list of its own
  uint64_t seq;                  // its element in there
};

namespace vantor {

inline tav_flist_t* parent_of(const tav_flist_t& list) {
  return list.array != nullptr ? list.array->home : nullptr;
}

// Gives the list, and every list above it, a body that no copy sees, and returns it. Pointers that
// were lent stay valid. Throws std::bad_alloc; the list's content is then unchanged.
tav_node& own_from_above(tav_flist_t& list);
inline tav_node& own(tav_flist_t& list) {
  const bool known =
      list.array == nullptr ||
      list.array->owned_at == sharings.load(std::memory_order_relaxed);  // the way down to here
  return known && is_own(*list.node) ? *list.node : own_from_above(list);
}
// The same for the field's elements, which must be there.
element_array& own_elements(tav_flist_t& list, uint32_t field);
// The same; makes an empty array where there is none.
element_array& need_elements(tav_flist_t& list, uint32_t field);

// The handle of an element in an array that is the list's own. Throws std::bad_alloc.
tav_flist_t* hand_out(tav_flist_t& list, element_array& array, element& e);

}  // namespace vantor

#endif
