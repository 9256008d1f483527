// The elements of one ARRAY field (a SUBSTRUCT is an array with the one element 0), in the order in
// which they were added.
// Sequence numbers, holes and sharing: docs/architecture.md, "Inside a list".
#ifndef VANTOR_LIST_ELEMENTS_H
#define VANTOR_LIST_ELEMENTS_H

#include <cstdint>
#include <vector>

#include "dd/vantor.h"
#include "vantor/binding.h"

namespace vantor {
struct element_array;
}

// The handle: what callers hold of a list, or of an element that was handed out. Never shared.
struct tav_flist {
  tav_node* node;                // its body
  vantor::element_array* array;  // that it is an element of; null: a root. Leads to the parent
};

namespace vantor {

// An element, or the hole that a dropped one left. Until it is handed out it leads to its body,
// from then on to its handle, and through that to the body: as the handle mostly lies in the body,
// one pointer is enough. Its lowest two bits tell which it is.
class element {
 public:
  element(tav_node* node, uint32_t number, int32_t own_id)
      : seq(number), id(own_id), held_(address(node)) {}

  uint32_t seq;  // sequence number, unique in the array and ascending; also the walk's cookie
  int32_t id;

  bool is_hole() const { return (held_ & HOLE) != 0; }
  // What callers hold; null until it is handed out, and of a hole.
  tav_flist_t* handle() const {
    return (held_ & HANDLE) != 0 ? reinterpret_cast<tav_flist_t*>(held_ - HANDLE) : nullptr;
  }
  // The body; null for a hole.
  tav_node* node() const {
    if (const tav_flist_t* own = handle()) return own->node;
    return is_hole() ? nullptr : reinterpret_cast<tav_node*>(held_);
  }
  // Close to where the body begins, mostly; tells it without reading the handle.
  const char* near_node() const { return reinterpret_cast<const char*>(held_); }

  // Gives it another body, which its handle shows as well.
  void set_node(tav_node* node) {
    if (tav_flist_t* own = handle()) {
      own->node = node;
    } else {
      held_ = address(node);
    }
  }
  // Hands it out; the handle shows the body.
  void set_handle(tav_flist_t* own) { held_ = address(own) | HANDLE; }
  // Takes its handle from it.
  void forget_handle() { held_ = address(node()); }

  void make_hole(size_t skip) { held_ = skip << KIND_BITS | HOLE; }
  // Of a hole: added to its place it gives where to look next.
  size_t skip() const { return held_ >> KIND_BITS; }

 private:
  static constexpr uintptr_t HANDLE = 1;
  static constexpr uintptr_t HOLE = 2;
  static constexpr int KIND_BITS = 2;

  static uintptr_t address(const void* at) { return reinterpret_cast<uintptr_t>(at); }

  uintptr_t held_;
};
static_assert(sizeof(element) == 16);

struct element_array {
  uint32_t refs = 1;              // nodes that share the array
  uint32_t live = 0;              // number of elements, holes not counted
  uint32_t room = 0;              // bytes of room in the body last made for an element; 0: none yet
  uint32_t hint = 0;              // place of the element that a walk gave last
  tav_flist_t* home = nullptr;    // the list whose elements were handed out; null: no handles
  element_array* link = nullptr;  // the next array in the pile that disown() works off
  uint32_t next_seq = 1;
  bool dense = true;      // each id is the one before plus 1, also over holes
  uint64_t owned_at = 0;  // value of `sharings` when all from the root to here was unshared
  std::vector<element> places;
  std::vector<uint32_t> table;  // hash table by id: place plus 1, 0 free; empty until needed
};

// An element, or null where there is none; valid until an element is added or removed.
element* search_id(element_array& array, int32_t id);
inline element* find_id(element_array& array, int32_t id) {
  if (!array.dense || array.places.empty()) return search_id(array, id);
  const int64_t place = int64_t{id} - int64_t{array.places.front().id};
  if (place < 0 || static_cast<size_t>(place) >= array.places.size()) return nullptr;
  element& found = array.places[static_cast<size_t>(place)];
  return !found.is_hole() ? &found : nullptr;
}
constexpr size_t AHEAD = 2;  // how many elements before its turn a body is prefetched
// Prefetches the body of the element at that place. Bodies are scattered over memory: without this
// a run over a large dictionary spent a twentieth of its time waiting for them.
inline void prefetch(const element_array& array, size_t place) {
  constexpr size_t LINE = 64;
  constexpr size_t LINES = 3;  // a body of the usual size has 192 bytes
  if (place >= array.places.size() || array.places[place].is_hole()) return;
  const char* body = array.places[place].near_node();
  for (size_t i = 0; i < LINES; ++i) __builtin_prefetch(body + i * LINE);
}
// The fast path of find_after: the next place, if `seq` is 0 or that of the element which a walk
// gave last, and if the next place is no hole; else null. Moves the hint to the element given.
inline element* follow(element_array& array, uint32_t seq) {
  const size_t next = seq == 0 ? 0 : size_t{array.hint} + 1;
  if (next >= array.places.size() || (seq != 0 && array.places[next - 1].seq != seq))
    return nullptr;
  element& found = array.places[next];
  if (found.is_hole()) return nullptr;
  array.hint = static_cast<uint32_t>(next);
  prefetch(array, next + AHEAD);
  return &found;
}
// The first element with a greater sequence number (0 gives the first of all); null at the end.
element* find_after(element_array& array, uint32_t seq);
// The element with that sequence number; it must exist.
element& at_seq(element_array& array, uint32_t seq);

// Adds an element at the end and takes over one owner of the node. The id must be new. When it
// throws (std::bad_alloc, std::length_error) nothing has changed.
element& add(element_array& array, int32_t id, tav_node* node);
// Makes the element a hole. The caller has taken over its node and its handle before.
void remove(element_array& array, element& gone) noexcept;

}  // namespace vantor

#endif
