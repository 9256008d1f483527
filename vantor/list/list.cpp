#include <cstdlib>
#include <memory>

#include "vantor/guard.h"
#include "vantor/list/add_value.h"
#include "vantor/list/chunks.h"
#include "vantor/list/elements_put.h"
#include "vantor/list/reap.h"

using namespace vantor;

namespace {

// The id under which an element is kept: a SUBSTRUCT has one, whatever id the caller names.
int32_t kept_id(uint32_t field, int32_t elem_id) {
  return DD_FIELD_ID_TYPE(field) == TAV_FLDT_ARRAY ? elem_id : 0;
}

void* lend_value(slot& s, holding held) {
  if ((s.tag & slot::LENT) == 0) s.tag |= slot::LENT;
  return value_of(s, held);
}

void take_value(tav_flist_t& list, uint32_t field, void* value) {
  set_value(own(list), field, value);
  free_value(value);
}

void set_elements(tav_flist_t& list, uint32_t field, int32_t id, const tav_flist_t& value) {
  share_node(*value.node);  // first, because the list may be the value itself, or stand below it
  std::unique_ptr<tav_node, reap_node> content(value.node);
  element_array& array = need_elements(list, field);
  place_content(array, id, content.release());
}

// Whether `list` is `put` or stands below it.
bool stands_below(const tav_flist_t& list, const tav_flist_t& put) {
  const tav_flist_t* at = &list;
  while (at != nullptr && at != &put) at = parent_of(*at);
  return at == &put;
}

void put_list(const request& about, tav_flist_t& list, int32_t id, tav_flist_t* put) {
  if (put->array != nullptr || stands_below(list, *put)) {
    fail(about, TAV_ERR_BAD_ARG);
    return;
  }
  place_list(list, about.field, id, put);
}

bool drop_value(tav_flist_t& list, uint32_t field) {
  if (find_slot(*list.node, field) == nullptr) return false;
  clear_slot(*find_slot(own(list), field));
  return true;
}

}  // namespace

tav_flist_t* tav_flist_create(tav_ebuf* ebuf) {
  return guarded<tav_flist_t*>({ebuf}, [] {
    start_run();
    return new_handle(*new_node());
  });
}

// Frees the list even if the buffer holds an error: else the list would leak.
void tav_flist_destroy(tav_flist_t* list, tav_ebuf* ebuf) {
  if (list == nullptr) return;
  if (list->array != nullptr) {  // borrowed: it belongs to the list that it stands in
    fail({ebuf}, TAV_ERR_BAD_ARG);
    return;
  }
  disown(list->node, list);
  free_handle(list);
}

tav_flist_t* tav_flist_copy(const tav_flist_t* list, tav_ebuf* ebuf) {
  const request about{ebuf};
  return guarded<tav_flist_t*>(about, [&]() -> tav_flist_t* {
    if (list == nullptr) return fail(about, TAV_ERR_BAD_ARG);
    share_node(*list->node);
    std::unique_ptr<tav_node, reap_node> owner(list->node);
    tav_flist_t* copy = new_handle(*list->node);
    (void)owner.release();
    return copy;
  });
}

// The slow path of tavi_flist_get: elements, fields that must be searched, and all errors. A
// function of its own so that the fast path needs no stack frame.
[[gnu::noinline]] static void* get_other(tav_flist_t* list, uint32_t field, int32_t elem_id,
                                         int32_t optional, tav_ebuf* ebuf) {
  const request about{ebuf, field, elem_id};
  return guarded<void*>(about, [&]() -> void* {
    if (list == nullptr) return fail(about, TAV_ERR_BAD_ARG);
    const holding held = holding_of(field);
    if (held == holding::NONE) return fail(about, TAV_ERR_WRONG_TYPE);
    slot* s = is_value(held) ? find_slot(*list->node, field) : nullptr;
    if (s != nullptr) return lend_value(*s, held);
    void* value =
        held == holding::ELEMENTS ? lend_element(*list, field, kept_id(field, elem_id)) : nullptr;
    if (value == nullptr && optional == 0) fail(about, TAV_ERR_MISSING_FIELD);
    return value;
  });
}

void* tavi_flist_get(tav_flist_t* list, uint32_t field, int32_t elem_id, int32_t optional, int32_t,
                     tav_ebuf* ebuf) {
  if (list != nullptr && !has_failed(ebuf)) {  // the fast path: no call is made more often
    const holding held = holding_of(field);
    const unsigned at = guided(*list->node, field);
    if (is_value(held) && at != ANYWHERE) {
      slot* s = find_slot_at(*list->node, field, at);
      if (s != nullptr) return lend_value(*s, held);
      if (optional != 0) return nullptr;
    }
  }
  return get_other(list, field, elem_id, optional, ebuf);
}

// The slow path of tavi_flist_set.
[[gnu::noinline]] static void set_other(tav_flist_t* list, uint32_t field, int32_t elem_id,
                                        const void* value, tav_ebuf* ebuf) {
  const request about{ebuf, field, elem_id};
  guarded<void>(about, [&] {
    if (list == nullptr || value == nullptr) {
      fail(about, TAV_ERR_BAD_ARG);
      return;
    }
    switch (holding_of(field)) {
      case holding::INT:
      case holding::VALUE:
        if (!is_malformed(field, value)) return set_value(own(*list), field, value);
        fail(about, TAV_ERR_BAD_ARG);
        return;
      case holding::ELEMENTS:
        return set_elements(*list, field, kept_id(field, elem_id),
                            *static_cast<const tav_flist_t*>(value));
      default:
        fail(about, TAV_ERR_WRONG_TYPE);
    }
  });
}

void tavi_flist_set(tav_flist_t* list, uint32_t field, int32_t elem_id, int32_t, const void* value,
                    tav_ebuf* ebuf) {
  const bool is_plain = list != nullptr && value != nullptr && !has_failed(ebuf);
  if (is_plain && is_known_own(*list) && add_value(*list->node, field, value)) return;
  set_other(list, field, elem_id, value, ebuf);
}

void tavi_flist_put(tav_flist_t* list, uint32_t field, int32_t elem_id, int32_t, void* value,
                    tav_ebuf* ebuf) {
  const request about{ebuf, field, elem_id};
  guarded<void>(about, [&] {
    const bool nothing = value == nullptr && DD_FIELD_ID_TYPE(field) == TAV_FLDT_POID;
    if (list == nullptr || (value == nullptr && !nothing)) {
      fail(about, TAV_ERR_BAD_ARG);
      return;
    }
    switch (DD_FIELD_ID_TYPE(field)) {
      case TAV_FLDT_POID:
      case TAV_FLDT_DECIMAL:
        if (!nothing) take_value(*list, field, value);
        return;
      case TAV_FLDT_ARRAY:
      case TAV_FLDT_SUBSTRUCT:
        return put_list(about, *list, kept_id(field, elem_id), static_cast<tav_flist_t*>(value));
      default:
        fail(about, TAV_ERR_WRONG_TYPE);
    }
  });
}

void tavi_client_put_cleanup(void* value, uint32_t field, int32_t) {
  switch (DD_FIELD_ID_TYPE(field)) {
    case TAV_FLDT_POID:
    case TAV_FLDT_DECIMAL:
      return free_value(value);
    case TAV_FLDT_ARRAY:
    case TAV_FLDT_SUBSTRUCT:
      return tav_flist_destroy(static_cast<tav_flist_t*>(value), nullptr);
    default:  // numbers and texts: tav_conf allocates them with malloc
      std::free(value);
  }
}

void tavi_flist_drop(tav_flist_t* list, uint32_t field, int32_t elem_id, tav_ebuf* ebuf) {
  const request about{ebuf, field, elem_id};
  guarded<void>(about, [&] {
    const holding held = holding_of(field);
    if (list == nullptr || held == holding::NONE) {
      fail(about, list == nullptr ? TAV_ERR_BAD_ARG : TAV_ERR_WRONG_TYPE);
      return;
    }
    const bool dropped = held == holding::ELEMENTS
                             ? drop_element(*list, field, kept_id(field, elem_id))
                             : drop_value(*list, field);
    if (!dropped) fail(about, TAV_ERR_NOT_FOUND);
  });
}
