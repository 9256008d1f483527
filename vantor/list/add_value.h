// The fast path of setting a value. It handles an INT, ENUM, STRING or DECIMAL field whose guide
// nibble is still 0, in a body that has one segment with room left. Nearly every value that the
// reader of the language sets is such a one; set_value handles the others.
#ifndef VANTOR_LIST_ADD_VALUE_H
#define VANTOR_LIST_ADD_VALUE_H

#include <algorithm>

#include "vantor/list/node.h"

namespace vantor {

// Appends a slot for a number or text, with `place` bytes for its value, and enters it in the
// guide. Null where the guide nibble is in use, the body has a second segment, or there is no room.
inline slot* new_slot(tav_node& node, uint32_t field, size_t place) {
  segment& run = node.first;
  const uint32_t index = run.count;
  if (guided(node, field) != 0 || run.next != nullptr || index + 1 >= FURTHER) return nullptr;
  if (run.room() < sizeof(slot) + place) return nullptr;
  slot& fresh = run.begin()[index];
  run.count = static_cast<uint16_t>(index + 1);
  run.low = static_cast<uint16_t>(run.low - place);
  fresh.distance = run.low - static_cast<uint32_t>(sizeof(segment) + index * sizeof(slot));
  fresh.tag = field;
  node.guide |= uint64_t{index + 1} << guide_place(field);
  return &fresh;
}

inline bool add_number(tav_node& node, uint32_t field, const void* value) {
  slot* fresh = new_slot(node, field, 0);
  if (fresh != nullptr) std::memcpy(&fresh->number, value, sizeof fresh->number);
  return fresh != nullptr;
}

inline bool add_text(tav_node& node, uint32_t field, const void* value) {
  const size_t size = std::strlen(static_cast<const char*>(value)) + 1;
  slot* fresh = size <= LARGEST_INSIDE ? new_slot(node, field, std::max(size, PLACE)) : nullptr;
  if (fresh != nullptr) std::memcpy(fresh->place(), value, size);
  return fresh != nullptr;
}

// Copies the value in; false where the fast path does not apply and nothing was done.
inline bool add_value(tav_node& node, uint32_t field, const void* value) {
  switch (DD_FIELD_ID_TYPE(field)) {
    case TAV_FLDT_INT:
    case TAV_FLDT_ENUM:
      return add_number(node, field, value);
    case TAV_FLDT_STRING:
    case TAV_FLDT_DECIMAL:
      return add_text(node, field, value);
    default:
      return false;
  }
}

}  // namespace vantor

#endif
