// The body of a list or an element: its fields, as slots in segments. A drawing of bodies,
// handles, arrays and boxes, their invariants and what is shared when:
// docs/architecture.md, "Inside a list".
#ifndef VANTOR_LIST_NODE_H
#define VANTOR_LIST_NODE_H

#include <atomic>

#include "vantor/binding.h"
#include "vantor/list/elements.h"
#include "vantor/list/value.h"

namespace vantor {

// A value outside the slot's place, counted by the slots that refer to it. Either the value stands
// in another body, which lent it to a caller and is kept for that, or it did not fit into the
// slot's place and stands in memory right behind the box.
struct box {
  uint32_t refs;
  tav_node* body;  // that holds the value; null: the value stands behind the box
  void* value;
};

struct slot {
  static constexpr uint32_t LENT = 1u << 31;   // a caller may hold the value's address
  static constexpr uint32_t BOXED = 1u << 30;  // what stands here is a box
  static constexpr uint32_t FIELD = BOXED - 1;

  uint32_t tag;  // field identifier and the two marks; 0: free
  union {
    int32_t number;     // the value of an INT or ENUM that is not boxed
    uint32_t distance;  // otherwise: bytes from here to its place; 0: a free slot without a place
  };

  bool is_free() const { return tag == 0; }
  uint32_t field() const { return tag & FIELD; }
  bool is_boxed() const { return (tag & BOXED) != 0; }
  bool has_elements() const { return holding_of(field()) == holding::ELEMENTS; }

  void* place() { return reinterpret_cast<char*>(this) + distance; }
  // The place of a text may begin anywhere, any other at a multiple of 8 bytes.
  box* boxed() {
    box* held;
    std::memcpy(&held, place(), sizeof held);
    return held;
  }
  void set_box(box* held) { std::memcpy(place(), &held, sizeof held); }
  element_array*& elements() { return *static_cast<element_array**>(place()); }
};
static_assert(sizeof(slot) == 8);

struct segment {
  segment* next;
  uint16_t count;     // slots, free ones included
  uint16_t low;       // bytes from the start of the segment to the lowest place in use
  uint32_t distance;  // of a body's first segment: the body's own in its chunk (new_block)

  slot* begin() { return reinterpret_cast<slot*>(this + 1); }
  slot* end() { return begin() + count; }
  size_t room() const { return low - sizeof(segment) - count * sizeof(slot); }
};
static_assert(sizeof(segment) == 16);

// The place of a value: the bytes that it takes in the segment beside its slot, 8 or more; of any
// but a text a multiple of 8.
constexpr size_t PLACE = 8;              // the smallest place: a pointer fits in
constexpr size_t LARGEST_INSIDE = 1024;  // values of more bytes stand behind a box
inline size_t rounded(size_t size) {
  return (size + PLACE - 1) / PLACE * PLACE;
}

}  // namespace vantor

struct tav_node {
  uint32_t owners;   // root handles and elements that have this body; at 0 its fields are freed
  uint32_t boxes;    // how many boxes refer to a value in here
  uint64_t guide;    // 16 nibbles, one per hash of a field: the field's slot (see guided)
  tav_flist housed;  // memory for one handle, of this body mostly; unused: its node is null
  vantor::segment first;
};

namespace vantor {

// Room for slots and values: more than a field definition or an entry needs. What it did not need
// is given back when the next body is made (see finish).
constexpr size_t FIRST_ROOM = 320 - sizeof(tav_node);

// A new, empty body with one owner, and room for slots and values: exactly that, or less when it
// is finished. Throws std::bad_alloc.
tav_node* new_node(size_t room = FIRST_ROOM, bool is_exact = false);
// A new body with these values in it, and room for no more.
tav_node* new_filled_node(const tav_value* values, size_t count);
// A new, empty body for the next element of an array, with as much room as
// earlier ones came to need.
tav_node* new_element_node(element_array& array);
// Shortens the body that this thread made last to what it holds, if it is this one or the last
// below it. What is added later has a little room; then it needs a second segment.
void finish(tav_node& node, bool is_element);
// The same before the next element is added to an array of this list.
void finish_before_next(const tav_flist& list, const element_array& array);
// A copy of the body, with one owner. Copies the values but shares the element arrays, and so all
// levels below. Throws std::bad_alloc.
tav_node* clone(tav_node& from);

// Counts how often a body or an array became shared, in all lists of the process. While the count
// stays, what was found unshared still is. Atomic because other threads may use other lists.
inline std::atomic<uint64_t> sharings{1};

// Adds an owner to the body (a user to the element array).
inline void share_node(tav_node& node) {
  ++node.owners;
  sharings.fetch_add(1, std::memory_order_relaxed);
}
inline void share_elements(element_array& array) {
  ++array.refs;
  sharings.fetch_add(1, std::memory_order_relaxed);
}

// Whether the body is unshared: it has one owner, and no box refers to a value in it.
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

// The guide is a hint of 4 bits (a nibble) per hash of a field; 16 hashes. A nibble is
//   0         no field of this hash was ever added to the body;
//   1 to 9    a field of this hash, if there is one, is in slot 0 to 8 of the first segment;
//   10 to 14  the same for slot 0 to 4 of the second segment;
//   15        anywhere: search all slots.
// The tag of the slot tells which field is there. All attributes of a field definition have
// different hashes, and so have those that most entries have: name, type, length, order, the
// permissions, the table, the entries below.
constexpr unsigned FURTHER = 10;
constexpr unsigned ANYWHERE = 15;
inline unsigned guide_place(uint32_t field) {  // the lowest bit of the field's nibble
  return (field + 3 * (field >> 24)) % 16 * 4;
}
inline unsigned guided(const tav_node& node, uint32_t field) {
  return node.guide >> guide_place(field) & 15;
}
inline slot& guided_slot(tav_node& node, unsigned at) {
  return at < FURTHER ? node.first.begin()[at - 1] : node.first.next->begin()[at - FURTHER];
}

slot* search_slot(tav_node& node, uint32_t field);  // looks at all slots

// The field's slot by a nibble other than ANYWHERE; null where the field is absent.
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

// Copies the value in, over an earlier one. When it throws std::bad_alloc nothing has changed.
void set_value(tav_node& node, uint32_t field, const void* value);
// The slot of an ARRAY or SUBSTRUCT field: the one it has, or a free one that enter_elements fills.
// Throws std::bad_alloc.
slot& slot_for_elements(tav_node& node, uint32_t field);
void enter_elements(slot& s, uint32_t field, element_array* elements) noexcept;
// Frees the slot and its box, if any. An element array in it must have been released before.
void clear_slot(slot& s) noexcept;
void release_box(box* b) noexcept;

// A handle of the body, whose owners are not counted up. It lies in the body's `housed` member
// where that is unused, which cannot fail; else in that of an empty body without owners, which is
// made for it and may throw std::bad_alloc.
tav_flist_t* new_handle(tav_node& node);
void free_handle(tav_flist_t* handle) noexcept;
// Frees the memory of a body unless it has an owner, or a box refers to it, or its `housed` handle
// is in use.
void free_unless_needed(tav_node* node) noexcept;

}  // namespace vantor

#endif
