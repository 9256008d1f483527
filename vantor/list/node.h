// The body of a list or an element: its fields. Any number of handles and elements share a body
// until one of them writes to it or hands out an element of it.
//
// A body is one block with its values in it, followed by further segments where it grows: slots
// from the front, values from the back. Neither ever moves, so a borrowed pointer stays valid as
// long as the body does. When a list gets a body of its own, values that were lent stay where they
// are: the new body refers to them by boxes, and a body whose values are boxed is never written to
// again.
#ifndef VANTOR_LIST_NODE_H
#define VANTOR_LIST_NODE_H

#include <atomic>

#include "vantor/binding.h"
#include "vantor/list/elements.h"
#include "vantor/list/value.h"

// What callers hold of a list or of an element that was handed out. Bodies may be shared, handles
// never are. A handle leads to its parent through the array that it stands in, so that a write can
// first make sure that the whole way down from the root is its own.
struct tav_flist {
  tav_node* node;
  vantor::element_array* array;  // where it is an element; null: a list of its own
  uint32_t seq;                  // its element in there
  bool is_housed;                // it stands in a body, not necessarily the one that it shows
};

namespace vantor {

// A value that a slot refers to: one that another body lent and is kept for, or one that does not
// fit into the slot's place, which then follows the box.
struct box {
  uint32_t refs;
  tav_node* body;  // null where the value follows
  void* value;
};

struct slot {
  static constexpr uint32_t LENT = 1u << 31;   // a caller may hold the value's address
  static constexpr uint32_t BOXED = 1u << 30;  // what stands here is a box
  static constexpr uint32_t FIELD = BOXED - 1;

  uint32_t tag;  // the field and marks; 0: free
  union {
    int32_t number;     // an INT or ENUM that is not boxed
    uint32_t distance;  // from here to the place of anything else; 0 for a free slot without one
  };

  bool is_free() const { return tag == 0; }
  uint32_t field() const { return tag & FIELD; }
  bool is_boxed() const { return (tag & BOXED) != 0; }
  bool has_elements() const { return holding_of(field()) == holding::ELEMENTS; }

  void* place() { return reinterpret_cast<char*>(this) + distance; }
  box*& boxed() { return *static_cast<box**>(place()); }
  element_array*& elements() { return *static_cast<element_array**>(place()); }
};
static_assert(sizeof(slot) == 8);

struct segment {
  segment* next;
  uint32_t count;  // slots, free ones included
  uint32_t low;    // where the values begin, in bytes from the start of the segment

  slot* begin() { return reinterpret_cast<slot*>(this + 1); }
  slot* end() { return begin() + count; }
  size_t room() const { return low - sizeof(segment) - count * sizeof(slot); }
};

// What a value of that size takes beside its slot.
constexpr size_t PLACE = 8;              // at least: a pointer fits in
constexpr size_t LARGEST_INSIDE = 1024;  // larger values stand behind a box
inline size_t rounded(size_t size) {
  return (size + PLACE - 1) / PLACE * PLACE;
}

}  // namespace vantor

struct tav_node {
  uint32_t owners;   // handles and elements; at 0 the fields are gone
  uint32_t boxes;    // that refer to a value in here
  uint64_t guide;    // where the fields stand, four bits for each guide_place
  tav_flist housed;  // the handle that lives here; free while its node is null
  vantor::segment first;
};

namespace vantor {

// Room for a field definition or an entry: with the body's head a block of 192 bytes.
constexpr size_t FIRST_ROOM = 192 - sizeof(tav_node);

// A new, empty body with one owner, and room for slots and values. Throws std::bad_alloc.
tav_node* new_node(size_t room = FIRST_ROOM);
// The same with these values in it, and room for no more.
tav_node* new_filled_node(const tav_value* values, size_t count);
// The same for the next element of an array, whose room follows what those before it came to need.
tav_node* new_element_node(element_array& array);
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
      if (!s.is_free()) do_with(s);
    }
  }
}

// Fields share 16 places of the guide; those of definitions and of entries each have their own.
// A place holds 0 for "none was ever put here", ANYWHERE, or where the only one is, if it is there:
// one more than its slot in the first segment, or FURTHER more than its slot in the second.
constexpr unsigned FURTHER = 10;
constexpr unsigned ANYWHERE = 15;
inline unsigned guide_place(uint32_t field) {
  return (field + 3 * (field >> 24)) % 16 * 4;
}
inline unsigned guided(const tav_node& node, uint32_t field) {
  return node.guide >> guide_place(field) & 15;
}
inline slot& guided_slot(tav_node& node, unsigned at) {
  return at < FURTHER ? node.first.begin()[at - 1] : node.first.next->begin()[at - FURTHER];
}

slot* search_slot(tav_node& node, uint32_t field);  // everywhere

// What the guide says where it does not say ANYWHERE.
inline slot* find_slot_at(tav_node& node, uint32_t field, unsigned at) {
  if (at == 0) return nullptr;
  slot& s = guided_slot(node, at);
  return s.field() == field ? &s : nullptr;
}
inline slot* find_slot(tav_node& node, uint32_t field) {
  const unsigned at = guided(node, field);
  return at != ANYWHERE ? find_slot_at(node, field, at) : search_slot(node, field);
}

// The field's elements, or null.
inline element_array* find_elements(tav_node& node, uint32_t field) {
  slot* s = find_slot(node, field);
  return s != nullptr ? s->elements() : nullptr;
}

// The value in a slot that holds no elements.
inline void* value_of(slot& s, holding held) {
  if (s.is_boxed()) return s.boxed()->value;
  return held == holding::INT ? &s.number : s.place();
}
inline void* value_of(slot& s) {
  return value_of(s, holding_of(s.field()));
}

// Copies the value in, over an earlier one. Throws std::bad_alloc, and nothing has changed.
void set_value(tav_node& node, uint32_t field, const void* value);
// The slot of a field that holds elements, free until they are entered. Throws std::bad_alloc.
slot& slot_for_elements(tav_node& node, uint32_t field);
void enter_elements(slot& s, uint32_t field, element_array* elements) noexcept;
// Frees the slot and what it holds (elements are the caller's).
void clear_slot(slot& s) noexcept;
void release_box(box* b) noexcept;

// A handle that shows the body, which does not get another owner: in the body itself where nothing
// lives there yet. Throws std::bad_alloc otherwise.
tav_flist_t* new_handle(tav_node& node);
void free_handle(tav_flist_t* handle) noexcept;
// Frees the memory of a body unless an owner, a box or a handle that lives there still needs it.
void free_unless_needed(tav_node* node) noexcept;

}  // namespace vantor

#endif
