#include "vantor/guard.h"
#include "vantor/list/handle.h"

using namespace vantor;

const tav_node* tav_node_of(const tav_flist_t* list) {
  return list != nullptr ? list->node : nullptr;
}

// Reading changes nothing that a reader could see. The const_casts are there because the functions
// of node.h take bodies that are not const.
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
  while (place < places.size() && places[place].is_hole()) place += places[place].skip();
  *position = static_cast<uint32_t>(place < places.size() ? place + 1 : place);
  if (place >= places.size()) return nullptr;
  prefetch(*elements, place + AHEAD);
  if (elem_id != nullptr) *elem_id = places[place].id;
  return places[place].node();
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

void tav_node_values(const tav_node* node, const tav_value_places& places, const void** values) {
  if (node == nullptr) return;
  each_slot(const_cast<tav_node&>(*node), [&](slot& s) {
    const uint32_t field = s.field();
    const auto number = static_cast<size_t>(DD_FIELD_ID_NUMBER(field));
    const size_t place = number < places.numbers ? places.by_number[number] : 0;
    if (place == 0 || places.fields[place - 1] != field) return;
    const bool is_empty = s.has_elements() && s.elements()->live == 0;
    values[place - 1] = is_empty ? nullptr : s.has_elements() ? node : value_of(s);
  });
}
