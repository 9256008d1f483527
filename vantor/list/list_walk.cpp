#include <memory>

#include "vantor/guard.h"
#include "vantor/list/elements_put.h"
#include "vantor/list/reap.h"

using namespace vantor;

namespace {

// A cookie is the sequence number of the element given last.
uint32_t seq_of(const tav_cookie_t* cookie) {
  return static_cast<uint32_t>(reinterpret_cast<uintptr_t>(cookie));
}

tav_cookie_t* cookie_of(uint32_t seq) {
  return reinterpret_cast<tav_cookie_t*>(uintptr_t{seq});
}

// The error code for a call that cannot work on the field, or TAV_ERR_NONE.
int32_t refusal(const tav_flist_t* list, uint32_t array) {
  if (list == nullptr) return TAV_ERR_BAD_ARG;
  return DD_FIELD_ID_TYPE(array) == TAV_FLDT_ARRAY ? TAV_ERR_NONE : TAV_ERR_WRONG_TYPE;
}

// The fast path of a step: the next element, if the last walk stopped before it and this list has
// handed it out already; else null.
const element* next_handed_out(tav_flist_t& list, uint32_t field, uint32_t seq) {
  if (DD_FIELD_ID_TYPE(field) != TAV_FLDT_ARRAY) return nullptr;
  element_array* array = find_elements(*list.node, field);
  if (array == nullptr || array->home != &list) return nullptr;
  const element* next = follow(*array, seq);
  return next != nullptr && next->handle() != nullptr ? next : nullptr;
}

// What tav_flist_elem_get_next does with the next element: hands it out. One that this list has
// handed out before needs no unsharing.
tav_flist_t* give(tav_flist_t& list, uint32_t field, const element_array& array,
                  const element& next) {
  tav_flist_t* there = next.handle();
  if (there != nullptr && array.home == &list) return there;
  const uint32_t seq = next.seq;
  element_array& own = own_elements(list, field);
  return hand_out(list, own, at_seq(own, seq));
}

// What tav_flist_elem_take_next does with it: makes it a root of its own.
tav_flist_t* take(tav_flist_t& list, uint32_t field, const element_array&, const element& next) {
  const uint32_t seq = next.seq;
  element_array& own = own_elements(list, field);
  element& gone = at_seq(own, seq);
  tav_flist_t* taken = hand_out(list, own, gone);
  taken->array = nullptr;
  remove(own, gone);
  return taken;
}

// One step of a walk, the slow path: `use` (give or take) turns the next element into the result.
template <class Use>
[[gnu::noinline]] tav_flist_t* step(tav_flist_t* list, uint32_t field, int32_t* elem_id,
                                    tav_cookie_t** cookie, tav_ebuf* ebuf, Use use) {
  const request about{ebuf, field};
  return guarded<tav_flist_t*>(about, [&]() -> tav_flist_t* {
    int32_t code = refusal(list, field);
    if (code == TAV_ERR_NONE && cookie == nullptr) code = TAV_ERR_BAD_ARG;
    if (code != TAV_ERR_NONE) return fail(about, code);

    element_array* elements = find_elements(*list->node, field);
    element* next = elements != nullptr ? find_after(*elements, seq_of(*cookie)) : nullptr;
    if (next == nullptr) return fail(about, TAV_ERR_NOT_FOUND);
    const int32_t id = next->id;
    const uint32_t seq = next->seq;
    tav_flist_t* result = use(*list, field, *elements, *next);
    if (elem_id != nullptr) *elem_id = id;
    *cookie = cookie_of(seq);
    return result;
  });
}

}  // namespace

tav_flist_t* tav_flist_elem_add(tav_flist_t* list, uint32_t array, int32_t elem_id,
                                tav_ebuf* ebuf) {
  return tav_elem_add_filled(list, array, elem_id, nullptr, 0, ebuf);
}

tav_flist_t* tav_elem_add_filled(tav_flist_t* list, uint32_t array, int32_t elem_id,
                                 const tav_value* values, size_t count, tav_ebuf* ebuf) {
  const request about{ebuf, array, elem_id};
  return guarded<tav_flist_t*>(about, [&]() -> tav_flist_t* {
    const int32_t code = refusal(list, array);
    if (code != TAV_ERR_NONE) return fail(about, code);
    element_array& elements = need_elements(*list, array);
    finish_before_next(*list, elements);
    element& e = place_content(
        elements, elem_id, count > 0 ? new_filled_node(values, count) : new_element_node(elements));
    return hand_out(*list, elements, e);  // cannot throw: the new body has its `housed` handle free
  });
}

tav_flist_t* tav_flist_elem_get_next(tav_flist_t* list, uint32_t array, int32_t* elem_id, int32_t,
                                     tav_cookie_t** cookie, int32_t, tav_ebuf* ebuf) {
  if (list != nullptr && cookie != nullptr && !has_failed(ebuf)) {  // the fast path
    if (const element* next = next_handed_out(*list, array, seq_of(*cookie))) {
      if (elem_id != nullptr) *elem_id = next->id;
      *cookie = cookie_of(next->seq);
      return next->handle();
    }
  }
  return step(list, array, elem_id, cookie, ebuf, give);
}

tav_flist_t* tav_flist_elem_take_next(tav_flist_t* list, uint32_t array, int32_t* elem_id, int32_t,
                                      tav_cookie_t** cookie, int32_t, tav_ebuf* ebuf) {
  return step(list, array, elem_id, cookie, ebuf, take);
}

int32_t tav_flist_elem_count(tav_flist_t* list, uint32_t array, tav_ebuf* ebuf) {
  const request about{ebuf, array};
  return guarded<int32_t>(about, [&]() -> int32_t {
    const int32_t code = refusal(list, array);
    if (code != TAV_ERR_NONE) {
      fail(about, code);
      return 0;
    }
    const element_array* elements = find_elements(*list->node, array);
    return elements != nullptr ? static_cast<int32_t>(elements->live) : 0;
  });
}
