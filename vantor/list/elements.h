// The elements of one ARRAY field (a SUBSTRUCT is an array with the one element 0), in the order in
// which they were added.
//
// Each element has a sequence number, which is never given twice in one array and which is also the
// cookie of a walk. Dropped elements leave holes, which are closed when they become the majority.
#ifndef VANTOR_LIST_ELEMENTS_H
#define VANTOR_LIST_ELEMENTS_H

#include <cstdint>
#include <vector>

#include "dd/vantor.h"
#include "vantor/binding.h"

namespace vantor {

struct element {
  tav_node* node;  // its content; null: a hole
  union {
    tav_flist_t* handle;  // what callers hold; null until the element is handed out
    size_t skip;          // of a hole: how many places further to look for the next element
  };
  uint32_t seq;
  int32_t id;
};

struct element_array {
  uint32_t refs = 1;              // nodes that share the array
  uint32_t live = 0;              // elements that are no holes
  uint32_t room = 0;              // of the body that was last made for an element; 0: none was
  tav_flist_t* home = nullptr;    // the list that the handles belong to; null: no handles
  element_array* link = nullptr;  // chains arrays that are being taken apart
  uint32_t next_seq = 1;
  uint64_t owned_at = 0;  // the count of sharings at which the way here was found own
  size_t hint = 0;        // where the last walk stood
  bool dense = true;      // ids are consecutive, holes included
  std::vector<element> places;
  std::vector<uint32_t> table;  // by id, once needed: a place plus 1, 0 for free
};

// An element, or null where there is none; valid until an element is added or removed.
element* search_id(element_array& array, int32_t id);
inline element* find_id(element_array& array, int32_t id) {
  if (!array.dense || array.places.empty()) return search_id(array, id);
  const int64_t place = int64_t{id} - int64_t{array.places.front().id};
  if (place < 0 || static_cast<size_t>(place) >= array.places.size()) return nullptr;
  element& found = array.places[static_cast<size_t>(place)];
  return found.node != nullptr ? &found : nullptr;
}
constexpr size_t AHEAD = 2;
// Asks memory for the body of the element at that place, which a walk will come to: bodies stand
// all over it, and waiting for each was a twentieth of a run over a large dictionary.
inline void prefetch(const element_array& array, size_t place) {
  constexpr size_t LINE = 64;
  constexpr size_t LINES = 3;  // most of a body
  if (place >= array.places.size() || array.places[place].node == nullptr) return;
  const auto* body = reinterpret_cast<const char*>(array.places[place].node);
  for (size_t i = 0; i < LINES; ++i) __builtin_prefetch(body + i * LINE);
}
// The element after the one with that sequence number, if the walk goes on where the last one
// stood and no hole follows; or null. Leaves the walk there.
inline element* follow(element_array& array, uint32_t seq) {
  const size_t next = seq == 0 ? 0 : array.hint + 1;
  if (next >= array.places.size() || (seq != 0 && array.places[next - 1].seq != seq))
    return nullptr;
  element& found = array.places[next];
  if (found.node == nullptr) return nullptr;
  array.hint = next;
  prefetch(array, next + AHEAD);
  return &found;
}
// The first element that was added after the one with that sequence number (0: the first of all).
element* find_after(element_array& array, uint32_t seq);
// The element with that sequence number, which must be there.
element& at_seq(element_array& array, uint32_t seq);

// Adds an element at the end; its id must not be there yet. The node's ownership passes to the
// array; when it throws (std::bad_alloc, std::length_error) nothing has changed.
element& add(element_array& array, int32_t id, tav_node* node);
// Makes a hole; whoever calls has taken the node and the handle over.
void remove(element_array& array, element& gone) noexcept;

}  // namespace vantor

#endif
