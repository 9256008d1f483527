// Unsharing: before a list is written to, it and every list above it get bodies and element arrays
// that no copy sees ("own"). When that costs what: docs/architecture.md, "Inside a list".
#ifndef VANTOR_LIST_HANDLE_H
#define VANTOR_LIST_HANDLE_H

#include "vantor/list/node.h"

namespace vantor {

inline tav_flist_t* parent_of(const tav_flist_t& list) {
  return list.array != nullptr ? list.array->home : nullptr;
}

// Unshares the list and every list above it, and gives the list's body. Pointers that were lent
// stay valid. Throws std::bad_alloc; the list's content is then unchanged.
tav_node& own_from_above(tav_flist_t& list);
// The fast test whether that is done already. True is certain: the body is unshared, and nothing
// became shared since the way down to it was found unshared. False: own_from_above must look.
inline bool is_known_own(const tav_flist_t& list) {
  const bool known =
      list.array == nullptr || list.array->owned_at == sharings.load(std::memory_order_relaxed);
  return known && is_own(*list.node);
}
inline tav_node& own(tav_flist_t& list) {
  return is_known_own(list) ? *list.node : own_from_above(list);
}
// Unshares the list as above, and then the field's element array, which must exist.
element_array& own_elements(tav_flist_t& list, uint32_t field);
// The same; makes an empty array where there is none.
element_array& need_elements(tav_flist_t& list, uint32_t field);

struct handle_owner {
  void operator()(tav_flist_t* handle) const { free_handle(handle); }
};

// The element's handle, made where it has none. The array must be unshared and the list's. Throws
// std::bad_alloc.
tav_flist_t* hand_out(tav_flist_t& list, element_array& array, element& e);

}  // namespace vantor

#endif
