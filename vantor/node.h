// The body of a list or an element: its fields. Any number of handles and elements share a body
// until one of them writes to it or hands out an element of it.
//
// Slots never move, so a pointer to a number stays valid as long as the body does. When a list gets
// a body of its own, numbers that were lent stay where they are: the new body refers to them by
// boxes, and a body whose numbers are boxed is never written to again.
#ifndef VANTOR_NODE_H
#define VANTOR_NODE_H

#include <atomic>

#include "vantor/elements.h"
#include "vantor/value.h"

namespace vantor {

// A number in another body, which it keeps from being freed.
struct box : counted {
  tav_node* body;
  void* number;
};

enum class slot_form : uint8_t { NUMBER, BOXED, OBJECT, ELEMENTS };

struct slot {
  uint32_t field;  // 0: free
  slot_form form;
  bool lent;  // of a NUMBER: a caller may hold its address
  union {
    alignas(8) unsigned char number[8];
    box* boxed;
    counted* object;
    element_array* elements;
  };
};
static_assert(sizeof(slot) == 16);

// A run of slots, which follow it.
struct segment {
  segment* next;
  uint32_t capacity;
  uint32_t used;

  slot* begin() { return reinterpret_cast<slot*>(this + 1); }
  slot* end() { return begin() + used; }
};

}  // namespace vantor

struct tav_node {
  uint32_t owners;  // handles and elements; at 0 the fields are gone
  uint32_t boxes;   // that refer to a number in here
  uint64_t met;  // a bit for each field that was ever put here, modulo 64: most searches end here
  vantor::segment first;
};

namespace vantor {

constexpr uint32_t FIRST_SLOTS = 4;  // holds a field definition

// A new, empty body with one owner. Throws std::bad_alloc.
tav_node* new_node(uint32_t slots = FIRST_SLOTS);
// A new body with one owner that shares everything below its own level. Throws std::bad_alloc.
tav_node* clone(tav_node& from);

// How often anything became shared. What was found to be a list's own still is while this stays.
// Atomic because other threads may use other lists.
inline std::atomic<uint64_t> sharings{1};

// One more owner of the body, or user of the elements.
inline void share_node(tav_node& node) {
  ++node.owners;
  sharings.fetch_add(1, std::memory_order_relaxed);
}
inline void share_elements(element_array& array) {
  ++array.refs;
  sharings.fetch_add(1, std::memory_order_relaxed);
}

// Whether nobody else sees what is written to the body.
inline bool is_own(const tav_node& node) {
  return node.owners == 1 && node.boxes == 0;
}

// Calls do_with(slot&) for each field, in the order in which they were added.
template <class Call>
void each_slot(tav_node& node, Call do_with) {
  for (segment* run = &node.first; run != nullptr; run = run->next) {
    for (slot& s : *run) {
      if (s.field != 0) do_with(s);
    }
  }
}

slot* find_slot(tav_node& node, uint32_t field);
// The field's slot, or a free one (whose `field` is 0 until it is filled). Throws std::bad_alloc.
slot& slot_for(tav_node& node, uint32_t field);
// The field's elements, or null.
element_array* find_elements(tav_node& node, uint32_t field);
// The value in a slot that holds no elements.
void* value_of(slot& s);

// Frees what a slot holds (not elements) and the slot.
void clear_value(slot& s) noexcept;
// Frees the memory of a body without owners and boxes.
void free_node(tav_node* node) noexcept;

}  // namespace vantor

#endif
