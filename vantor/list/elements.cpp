#include "vantor/list/elements.h"

#include <algorithm>
#include <stdexcept>

#include "dd/hash.h"

namespace vantor {

namespace {

constexpr size_t FEW = 8;             // up to 8 elements are searched one by one, without a table
constexpr uint32_t SPARE_HOLES = 32;  // holes are closed when there are over 32 more than elements

size_t slot_of(const element_array& array, int32_t id) {
  return dd_hash_number(id) & (array.table.size() - 1);
}

void enter(element_array& array, size_t place) {
  const size_t mask = array.table.size() - 1;
  size_t slot = slot_of(array, array.places[place].id);
  while (array.table[slot] != 0) slot = (slot + 1) & mask;
  array.table[slot] = static_cast<uint32_t>(place + 1);
}

void build_table(element_array& array) {
  size_t size = 32;
  while (size < array.places.size() * 4) size *= 2;
  array.table.assign(size, 0);
  for (size_t i = 0; i < array.places.size(); ++i) enter(array, i);
}

// Enters the last element. A table that is half full is dropped; the next
// search builds a larger one.
void enter_last(element_array& array) {
  if (array.places.size() * 2 > array.table.size()) {
    array.table.clear();
  } else {
    enter(array, array.places.size() - 1);
  }
}

element* find_in_table(element_array& array, int32_t id) {
  if (array.table.empty()) build_table(array);
  const size_t mask = array.table.size() - 1;
  for (size_t slot = slot_of(array, id); array.table[slot] != 0; slot = (slot + 1) & mask) {
    element& found = array.places[array.table[slot] - 1];
    if (found.id == id && !found.is_hole()) return &found;
  }
  return nullptr;
}

element* find_one_by_one(element_array& array, int32_t id) {
  for (element& e : array.places) {
    if (e.id == id && !e.is_hole()) return &e;
  }
  return nullptr;
}

// The place of the first element with a greater sequence number. An element of this very number
// need not exist any more.
size_t place_after(const element_array& array, uint32_t seq) {
  const auto& places = array.places;
  if (places.empty() || seq < places.front().seq) return 0;
  const size_t guess = seq - places.front().seq;  // exact unless holes were closed
  if (guess < places.size() && places[guess].seq == seq) return guess + 1;
  const auto later = std::upper_bound(places.begin(), places.end(), seq,
                                      [](uint32_t s, const element& e) { return s < e.seq; });
  return static_cast<size_t>(later - places.begin());
}

// The first place from `start` on that is no hole, or the end. Makes every hole on the way skip
// straight to it, so that later calls need fewer steps.
size_t past_holes(std::vector<element>& places, size_t start) {
  size_t end = start;
  while (end < places.size() && places[end].is_hole()) end += places[end].skip();
  while (start < end) {
    const size_t next = start + places[start].skip();
    places[start].make_hole(end - start);
    start = next;
  }
  return end;
}

bool follows(const element_array& array, int32_t id) {
  const auto& places = array.places;
  return places.empty() || int64_t{places.back().id} + 1 == int64_t{id};
}

void close_holes(element_array& array) noexcept {
  auto& places = array.places;
  std::erase_if(places, [](const element& e) { return e.is_hole(); });
  array.table.clear();
  array.hint = 0;
  array.dense =
      std::adjacent_find(places.begin(), places.end(), [](const element& a, const element& b) {
        return int64_t{a.id} + 1 != int64_t{b.id};
      }) == places.end();
}

}  // namespace

element* search_id(element_array& array, int32_t id) {
  if (array.places.empty()) return nullptr;
  return array.places.size() <= FEW ? find_one_by_one(array, id) : find_in_table(array, id);
}

element* find_after(element_array& array, uint32_t seq) {
  if (element* next = follow(array, seq)) return next;
  const size_t place = past_holes(array.places, place_after(array, seq));
  if (place >= array.places.size()) return nullptr;
  array.hint = static_cast<uint32_t>(place);
  return &array.places[place];
}

element& at_seq(element_array& array, uint32_t seq) {
  return array.places[place_after(array, seq) - 1];
}

element& add(element_array& array, int32_t id, tav_node* node) {
  if (array.next_seq == 0) throw std::length_error("sequence numbers are used up");
  if (array.live == 0 && !array.places.empty()) close_holes(array);
  if (array.places.capacity() == 0) array.places.reserve(4);
  const bool dense = array.dense && follows(array, id);
  array.places.emplace_back(node, array.next_seq, id);
  array.dense = dense;
  ++array.next_seq;
  ++array.live;
  if (!array.table.empty()) enter_last(array);
  return array.places.back();
}

void remove(element_array& array, element& gone) noexcept {
  gone.make_hole(1);
  --array.live;
  if (array.places.size() - array.live > array.live + SPARE_HOLES) close_holes(array);
}

}  // namespace vantor
