#include "vantor/guard.h"
#include "vantor/handle.h"

using namespace vantor;

const tav_node* tav_node_of(const tav_flist_t* list) {
  return list != nullptr ? list->node : nullptr;
}

// Reading changes nothing that a reader could see, but the interface's internals are not const.
static element_array* elements_of(const tav_node* node, uint32_t array) {
  if (node == nullptr || holding_of(array) != holding::ELEMENTS) return nullptr;
  return find_elements(const_cast<tav_node&>(*node), array);
}

const tav_node* tav_node_next(const tav_node* node, uint32_t array, uint32_t* position,
                              int32_t* elem_id) {
  const element_array* elements = elements_of(node, array);
  if (elements == nullptr) return nullptr;
  const auto& places = elements->places;
  size_t place = *position;
  while (place < places.size() && places[place].node == nullptr) place += places[place].skip;
  *position = static_cast<uint32_t>(place < places.size() ? place + 1 : place);
  if (place >= places.size()) return nullptr;
  expect(*elements, place + AHEAD);
  if (elem_id != nullptr) *elem_id = places[place].id;
  return places[place].node;
}

uint32_t tav_node_count(const tav_node* node, uint32_t array) {
  const element_array* elements = elements_of(node, array);
  return elements != nullptr ? elements->live : 0;
}

const void* tav_node_get(const tav_node* node, uint32_t field) {
  const holding held = holding_of(field);
  if (node == nullptr || !is_value(held)) return nullptr;
  slot* s = find_slot(const_cast<tav_node&>(*node), field);
  return s != nullptr ? value_of(*s, held) : nullptr;
}

void tav_node_each(const tav_node* node, tav_node_visitor visit) {
  if (node == nullptr) return;
  each_slot(const_cast<tav_node&>(*node), [&](slot& s) {
    visit.call(visit.context, s.field(), s.has_elements() ? nullptr : value_of(s));
  });
}
