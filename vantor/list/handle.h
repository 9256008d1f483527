// Handles and what is above them: lists become own before they are written to.
#ifndef VANTOR_LIST_HANDLE_H
#define VANTOR_LIST_HANDLE_H

#include "vantor/list/node.h"

namespace vantor {

inline tav_flist_t* parent_of(const tav_flist_t& list) {
  return list.array != nullptr ? list.array->home : nullptr;
}

// Gives the list, and every list above it, a body that no copy sees, and returns it. Pointers that
// were lent stay valid. Throws std::bad_alloc; the list's content is then unchanged.
tav_node& own_from_above(tav_flist_t& list);
// Whether it has that, as far as can be told at once.
inline bool is_known_own(const tav_flist_t& list) {
  const bool known =
      list.array == nullptr ||
      list.array->owned_at == sharings.load(std::memory_order_relaxed);  // the way down to here
  return known && is_own(*list.node);
}
inline tav_node& own(tav_flist_t& list) {
  return is_known_own(list) ? *list.node : own_from_above(list);
}
// The same for the field's elements, which must be there.
element_array& own_elements(tav_flist_t& list, uint32_t field);
// The same; makes an empty array where there is none.
element_array& need_elements(tav_flist_t& list, uint32_t field);

struct handle_owner {
  void operator()(tav_flist_t* handle) const { free_handle(handle); }
};

// The handle of an element in an array that is the list's own. Throws std::bad_alloc.
tav_flist_t* hand_out(tav_flist_t& list, element_array& array, element& e);

}  // namespace vantor

#endif
