// Shortening a body that is complete to what it holds.
#include <cstring>

#include "vantor/list/chunks.h"
#include "vantor/list/elements.h"
#include "vantor/list/node.h"

namespace vantor {

// Moves the values down to the slots, but for `spare` bytes, and gives the rest back. Values that
// were lent must stay where they are, and so must those of a body that others have too: then
// nothing happens.
static void shorten(tav_node& node, size_t size, size_t spare) {
  segment& run = node.first;
  if (run.room() < spare + PLACE || !is_own(node)) return;
  const auto moved = static_cast<uint16_t>((run.room() - spare) / PLACE * PLACE);
  for (const slot& s : run) {
    if ((s.tag & slot::LENT) != 0) return;
  }
  const size_t end = size - offsetof(tav_node, first);
  char* low = reinterpret_cast<char*>(&run) + run.low;
  std::memmove(low - moved, low, end - run.low);
  run.low = static_cast<uint16_t>(run.low - moved);
  for (slot& s : run) {
    const bool is_boxed = s.is_boxed();
    if (!is_boxed && holding_of(s.field()) == holding::INT) continue;
    if (s.distance != 0) s.distance -= moved;
    if (!is_boxed && is_buf(s.field())) static_cast<tav_buf_t*>(s.place())->data -= moved;
  }
  shorten_last(size - moved);
}

static tav_node* last_element(tav_node& node) {
  tav_node* last = nullptr;
  each_slot(node, [&](slot& s) {
    if (s.has_elements() && !s.elements()->places.empty())
      last = s.elements()->places.back().node();
  });
  return last;
}

void finish(tav_node& node, bool is_element) {
  // One more text of 8 bytes in an element, one more number in a definition.
  constexpr size_t ELEMENT_SPARE = sizeof(slot) + PLACE;
  constexpr size_t ROOT_SPARE = sizeof(slot);
  constexpr int LEVELS = 4;  // not all: in very deep lists each end of one would look at all
  tav_node* at = has_last() ? &node : nullptr;
  for (int level = 0; at != nullptr && level < LEVELS; ++level) {
    const size_t size = size_of_last(at);
    if (size != 0) return shorten(*at, size, is_element || level > 0 ? ELEMENT_SPARE : ROOT_SPARE);
    at = last_element(*at);
  }
}

void finish_before_next(const tav_flist& list, const element_array& array) {
  if (array.places.empty()) return finish(*list.node, list.array != nullptr);
  tav_node* last = array.places.back().node();
  if (last != nullptr) finish(*last, true);
}

}  // namespace vantor
