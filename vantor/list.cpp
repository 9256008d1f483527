#include <cstdlib>
#include <memory>

#include "vantor/elements_put.h"
#include "vantor/guard.h"
#include "vantor/reap.h"

using namespace vantor;

namespace {

// The id under which an element is kept: a SUBSTRUCT has one, whatever id the caller names.
int32_t kept_id(uint32_t field, int32_t elem_id) {
  return DD_FIELD_ID_TYPE(field) == TAV_FLDT_ARRAY ? elem_id : 0;
}

tav_flist_t* new_handle(tav_node* node) {
  std::unique_ptr<tav_node, reap_node> owner(node);
  auto* list = new tav_flist{node, nullptr, 0};
  (void)owner.release();
  return list;
}

void* lend_value(tav_flist_t& list, uint32_t field) {
  slot* s = find_slot(*list.node, field);
  if (s == nullptr) return nullptr;
  s->lent = true;
  return value_of(*s);
}

void set_number(tav_flist_t& list, uint32_t field, const void* value) {
  unsigned char number[sizeof(int64_t)] = {};
  std::memcpy(number, value, number_size(field));  // the value may stand in this very list
  slot& s = slot_for(own(list), field);
  if (s.field == 0 || s.form == slot_form::BOXED) {
    if (s.field != 0) clear_value(s);
    s.form = slot_form::NUMBER;
    s.lent = false;
  }
  std::memcpy(s.number, number, sizeof number);
  s.field = field;
}

// Takes the object over. Throws std::bad_alloc; the object is then still the caller's.
void place_object(tav_flist_t& list, uint32_t field, counted* object) {
  slot& s = slot_for(own(list), field);
  if (s.field != 0) clear_value(s);
  s.form = slot_form::OBJECT;
  s.lent = false;
  s.object = object;
  s.field = field;
}

void set_object(const request& about, tav_flist_t& list, const void* value) {
  std::unique_ptr<counted, free_counted> object(copy_in(about.field, value));
  if (object == nullptr) {
    fail(about, TAV_ERR_BAD_ARG);
    return;
  }
  place_object(list, about.field, object.get());
  (void)object.release();
}

void set_elements(tav_flist_t& list, uint32_t field, int32_t id, const tav_flist_t& value) {
  share_node(*value.node);
  place_content(list, field, id, value.node);
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
  clear_value(*find_slot(own(list), field));
  return true;
}

}  // namespace

tav_flist_t* tav_flist_create(tav_ebuf* ebuf) {
  return guarded<tav_flist_t*>({ebuf}, [] { return new_handle(new_node()); });
}

// Frees whatever the buffer holds, or the list would be lost.
void tav_flist_destroy(tav_flist_t* list, tav_ebuf* ebuf) {
  if (list == nullptr) return;
  if (list->array != nullptr) {  // borrowed: it belongs to the list that it stands in
    fail({ebuf}, TAV_ERR_BAD_ARG);
    return;
  }
  disown(list->node, list);
  delete list;
}

tav_flist_t* tav_flist_copy(const tav_flist_t* list, tav_ebuf* ebuf) {
  const request about{ebuf};
  return guarded<tav_flist_t*>(about, [&]() -> tav_flist_t* {
    if (list == nullptr) return fail(about, TAV_ERR_BAD_ARG);
    share_node(*list->node);
    return new_handle(list->node);
  });
}

void* tavi_flist_get(tav_flist_t* list, uint32_t field, int32_t elem_id, int32_t optional, int32_t,
                     tav_ebuf* ebuf) {
  const request about{ebuf, field, elem_id};
  return guarded<void*>(about, [&]() -> void* {
    if (list == nullptr) return fail(about, TAV_ERR_BAD_ARG);
    const holding held = holding_of(field);
    if (held == holding::NONE) return fail(about, TAV_ERR_WRONG_TYPE);
    void* value = held == holding::ELEMENTS ? lend_element(*list, field, kept_id(field, elem_id))
                                            : lend_value(*list, field);
    if (value == nullptr && optional == 0) fail(about, TAV_ERR_MISSING_FIELD);
    return value;
  });
}

void tavi_flist_set(tav_flist_t* list, uint32_t field, int32_t elem_id, int32_t, const void* value,
                    tav_ebuf* ebuf) {
  const request about{ebuf, field, elem_id};
  guarded<void>(about, [&] {
    if (list == nullptr || value == nullptr) {
      fail(about, TAV_ERR_BAD_ARG);
      return;
    }
    switch (holding_of(field)) {
      case holding::NUMBER:
        return set_number(*list, field, value);
      case holding::OBJECT:
        return set_object(about, *list, value);
      case holding::ELEMENTS:
        return set_elements(*list, field, kept_id(field, elem_id),
                            *static_cast<const tav_flist_t*>(value));
      default:
        fail(about, TAV_ERR_WRONG_TYPE);
    }
  });
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
        if (!nothing) place_object(*list, field, static_cast<tav_poid*>(value));
        return;
      case TAV_FLDT_DECIMAL:
        return place_object(*list, field, static_cast<tav_decimal_value*>(value));
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
      return release(static_cast<tav_poid*>(value));
    case TAV_FLDT_DECIMAL:
      return release(static_cast<tav_decimal_value*>(value));
    case TAV_FLDT_ARRAY:
    case TAV_FLDT_SUBSTRUCT:
      return tav_flist_destroy(static_cast<tav_flist_t*>(value), nullptr);
    default:  // numbers and texts, which tav_conf gives
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
