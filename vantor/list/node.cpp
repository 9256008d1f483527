#include "vantor/list/node.h"

#include <algorithm>
#include <memory>

#include "vantor/list/add_value.h"
#include "vantor/list/chunks.h"
#include "vantor/list/reap.h"

namespace vantor {

namespace {

constexpr size_t FURTHER_ROOM = 48;       // bytes for slots and values in the second segment
constexpr size_t LARGEST_FURTHER = 4096;  // the same in the largest segment
constexpr size_t LARGEST_FIRST = 32768;   // and in the first

// How many bytes of place a value of that size needs: none for an INT, a pointer's for a boxed one.
size_t place_for(uint32_t field, size_t size) {
  if (holding_of(field) == holding::INT) return 0;
  if (size > LARGEST_INSIDE) return PLACE;
  return is_text(field) ? std::max(size, PLACE) : rounded(size);
}

// How many bytes all places take with one more.
size_t places_with(size_t places, uint32_t field, size_t place) {
  return is_text(field) ? places + place : rounded(places + place);
}

uint16_t end_of(size_t room) {
  return static_cast<uint16_t>(sizeof(segment) + rounded(room));
}

segment* new_segment(size_t room) {
  const uint16_t end = end_of(room);
  return new (::operator new(end)) segment{nullptr, 0, end, 0};
}

bool is_aligned(slot& s) {
  return reinterpret_cast<uintptr_t>(s.place()) % PLACE == 0;
}

// How many bytes of place the slot has. A free slot keeps that number in the place itself.
size_t place_of(slot& s) {
  if (s.is_free()) {
    uint32_t kept = 0;
    if (s.distance != 0) std::memcpy(&kept, s.place(), sizeof kept);
    return kept;
  }
  if (s.is_boxed() || s.has_elements()) return PLACE;
  return place_for(s.field(), value_size(s.field(), value_of(s)));
}

void make_free(slot& s, size_t place) {
  s.tag = 0;
  if (place > 0) {
    const auto kept = static_cast<uint32_t>(place);
    std::memcpy(s.place(), &kept, sizeof kept);
  } else {
    s.distance = 0;
  }
}

// The field's nibble is in use. It gets `at` where its former field is gone, and ANYWHERE where two
// fields now have that hash.
[[gnu::noinline]] void share_guide_place(tav_node& node, uint32_t field, unsigned at) {
  const unsigned place = guide_place(field);
  const unsigned before = guided(node, field);
  const slot* other = before != ANYWHERE ? &guided_slot(node, before) : nullptr;
  const bool is_taken = other != nullptr && !other->is_free();
  if (other == nullptr || (is_taken && guide_place(other->field()) == place)) at = ANYWHERE;
  node.guide = (node.guide & ~(uint64_t{15} << place)) | uint64_t{at} << place;
}

// Enters the field in the guide; `at` is what guide_of says of its slot.
inline void guide_to(tav_node& node, uint32_t field, unsigned at) {
  if (guided(node, field) != 0) return share_guide_place(node, field, at);
  node.guide |= uint64_t{at} << guide_place(field);
}

// The nibble that means that slot of that segment; ANYWHERE for slots beyond what it can say.
inline unsigned guide_of(const tav_node& node, const segment& run, size_t index) {
  const bool is_first = &run == &node.first;
  const size_t at = is_first ? index + 1 : index + FURTHER;
  const bool is_told = is_first ? at < FURTHER : at < ANYWHERE && &run == node.first.next;
  return is_told ? static_cast<unsigned>(at) : ANYWHERE;
}

// Adds a segment of 48, 96, ... 4096 bytes, so that bodies with many fields have few segments.
[[gnu::noinline]] segment& add_segment(tav_node& node, size_t needed) {
  size_t room = FURTHER_ROOM;
  segment* last = &node.first;
  for (; last->next != nullptr; last = last->next) room = std::min(2 * room, LARGEST_FURTHER);
  return *(last->next = new_segment(std::max(room, needed)));
}

// The last segment, or a new one where it lacks room for one more slot with a place of that size.
inline segment& segment_with_room(tav_node& node, size_t place) {
  segment* last = &node.first;
  while (last->next != nullptr) last = last->next;
  const size_t needed = sizeof(slot) + place;
  return last->room() >= needed ? *last : add_segment(node, needed);
}

// Adds a slot for the field, with a place of that size. The caller must set its tag and value.
inline slot& append(tav_node& node, uint32_t field, size_t place) {
  segment& run = segment_with_room(node, place);
  const uint32_t index = run.count++;
  slot& fresh = run.begin()[index];
  const size_t low = run.low - place;  // the slots end at a multiple of 8: there is room for that
  run.low = static_cast<uint16_t>(is_text(field) ? low : low / PLACE * PLACE);
  fresh.distance = run.low - static_cast<uint32_t>(sizeof(segment) + index * sizeof(slot));
  guide_to(node, field, guide_of(node, run, index));
  return fresh;
}

box* new_box(tav_node& body, void* value) {
  auto* made = new box{1, &body, value};
  ++body.boxes;
  return made;
}

box* new_box(uint32_t field, const void* value, size_t size) {
  auto* made = new (::operator new(sizeof(box) + size)) box{1, nullptr, nullptr};
  made->value = made + 1;
  copy_value(field, made->value, value, size);
  return made;
}

// Fills a slot with a value, which may be the one that it has.
void fill(slot& s, uint32_t field, const void* value, size_t size) {
  const bool is_int = holding_of(field) == holding::INT;
  const bool fits = is_int ? !s.is_boxed() : size <= place_of(s);
  box* fresh = fits ? nullptr : new_box(field, value, size);
  box* old = s.is_boxed() ? s.boxed() : nullptr;
  if (!fits) {
    s.set_box(fresh);
  } else if (is_int) {
    std::memcpy(&s.number, value, sizeof s.number);
  } else {
    copy_value(field, s.place(), value, size);
  }
  s.tag = field | (fits ? s.tag & slot::LENT : slot::BOXED);
  if (old != nullptr) release_box(old);
}

// Whether a free slot can be used for a value that needs `place` bytes. A place of 8 or more will
// do, for a larger value as the pointer to its box. An INT needs no place and gets a slot without:
// its number would overwrite the distance, and the place would be lost. That of a text may be
// aligned for no other.
bool can_take(slot& s, uint32_t field, size_t place) {
  const size_t has = place_of(s);
  return place == 0 ? has == 0 : has >= PLACE && (is_text(field) || is_aligned(s));
}

// A free slot that can be used for such a value, and the nibble that means it; null: none.
slot* find_left(tav_node& node, uint32_t field, size_t place, unsigned& at) {
  for (segment* run = &node.first; run != nullptr; run = run->next) {
    for (size_t i = 0; i < run->count; ++i) {
      slot& s = run->begin()[i];
      if (!s.is_free() || !can_take(s, field, place)) continue;
      at = guide_of(node, *run, i);
      return &s;
    }
  }
  return nullptr;
}

// A free slot for a field that is absent.
slot& slot_for_new(tav_node& node, uint32_t field, size_t place) {
  if (guided(node, field) != 0) {  // a field of this hash was added, and may have left a slot
    unsigned at = ANYWHERE;
    if (slot* s = find_left(node, field, place, at)) {
      guide_to(node, field, at);
      return *s;
    }
  }
  slot& s = append(node, field, place);
  make_free(s, place);
  return s;
}

size_t place_in_clone(slot& s) {
  return (s.tag & slot::LENT) != 0 ? PLACE : place_of(s);
}

// Fills an empty slot with a value that fits into its place.
void fill_inside(slot& s, uint32_t field, const void* value, size_t size) noexcept {
  if (holding_of(field) == holding::INT) {
    std::memcpy(&s.number, value, sizeof s.number);
  } else {
    copy_value(field, s.place(), value, size);
  }
  s.tag = field;
}

// Fills `to`, a slot of another body, from `from`, a slot of `body`. An element array or a box is
// shared, a value that was lent gets a box, any other value is copied.
void share_slot(tav_node& body, slot& from, slot& to) {
  const uint32_t field = from.field();
  if (from.has_elements()) {
    enter_elements(to, field, from.elements());
    share_elements(*to.elements());
  } else if (from.is_boxed()) {
    to.set_box(from.boxed());
    ++to.boxed()->refs;
    to.tag = field | slot::BOXED;
  } else if ((from.tag & slot::LENT) != 0) {
    to.set_box(new_box(body, value_of(from)));
    to.tag = field | slot::BOXED;
  } else {
    const void* value = value_of(from);
    fill_inside(to, field, value, value_size(field, value));
  }
}

}  // namespace

tav_node* new_node(size_t room, bool is_exact) {
  room = std::min(room, LARGEST_FIRST);
  const auto [memory, distance] = new_block(sizeof(tav_node) + rounded(room), is_exact);
  return new (memory) tav_node{1, 0, 0, {}, {nullptr, 0, end_of(room), distance}};
}

tav_node* clone(tav_node& from) {
  size_t slots = sizeof(slot);
  size_t places = 0;
  each_slot(from, [&](slot& s) {
    slots += sizeof(slot);
    places = places_with(places, s.field(), place_in_clone(s));
  });
  places = rounded(places) + PLACE;  // for one more field: bodies are cloned to be written to
  std::unique_ptr<tav_node, reap_node> made(new_node(slots + places, true));
  each_slot(from,
            [&](slot& s) { share_slot(from, s, append(*made, s.field(), place_in_clone(s))); });
  return made.release();
}

slot* search_slot(tav_node& node, uint32_t field) {
  for (segment* run = &node.first; run != nullptr; run = run->next) {
    for (slot& s : *run) {
      if (s.field() == field) return &s;
    }
  }
  return nullptr;
}

// The slow path: the field has a value already, its nibble is in use, or the value is too large.
[[gnu::noinline]] static void set_other(tav_node& node, uint32_t field, const void* value,
                                        size_t size) {
  slot* s = find_slot(node, field);
  if (s == nullptr) s = &slot_for_new(node, field, place_for(field, size));
  fill(*s, field, value, size);
}

static void set_value(tav_node& node, uint32_t field, const void* value, size_t size) {
  if (guided(node, field) != 0 || size > LARGEST_INSIDE) {
    return set_other(node, field, value, size);
  }
  fill_inside(append(node, field, place_for(field, size)), field, value, size);
}

void set_value(tav_node& node, uint32_t field, const void* value) {
  if (!add_value(node, field, value)) set_value(node, field, value, value_size(field, value));
}

tav_node* new_filled_node(const tav_value* values, size_t count) {
  constexpr size_t MANY = 32;
  size_t sizes[MANY];
  size_t places = 0;
  for (size_t i = 0; i < count; ++i) {
    const size_t size = value_size(values[i].field, values[i].value);
    places = places_with(places, values[i].field, place_for(values[i].field, size));
    if (i < MANY) sizes[i] = size;
  }
  std::unique_ptr<tav_node, reap_node> node(new_node(count * sizeof(slot) + places, true));
  for (size_t i = 0; i < count; ++i) {
    const auto [field, value] = values[i];
    set_value(*node, field, value, i < MANY ? sizes[i] : value_size(field, value));
  }
  return node.release();
}

// The first element gets FIRST_ROOM; later ones the same as the one before, and 64 bytes more
// whenever that one needed a second segment.
static uint32_t room_after(const element_array& array) {
  constexpr uint32_t MORE = 64;
  if (array.places.empty()) return FIRST_ROOM;
  const tav_node* last = array.places.back().node();
  const bool is_full = last != nullptr && last->first.next != nullptr;
  return is_full ? std::min<uint32_t>(array.room + MORE, LARGEST_INSIDE) : array.room;
}

tav_node* new_element_node(element_array& array) {
  if (array.room != 0 || array.places.empty()) array.room = room_after(array);
  return new_node(array.room != 0 ? array.room : FIRST_ROOM);
}

slot& slot_for_elements(tav_node& node, uint32_t field) {
  slot* s = find_slot(node, field);
  return s != nullptr ? *s : slot_for_new(node, field, PLACE);
}

void enter_elements(slot& s, uint32_t field, element_array* elements) noexcept {
  s.elements() = elements;
  s.tag = field;
}

void release_box(box* b) noexcept {
  if (--b->refs > 0) return;
  if (b->body != nullptr) {
    --b->body->boxes;
    free_unless_needed(b->body);
  }
  ::operator delete(b);
}

void clear_slot(slot& s) noexcept {
  const size_t place = place_of(s);
  if (s.is_boxed()) release_box(s.boxed());
  make_free(s, place);
}

void free_unless_needed(tav_node* node) noexcept {
  if (node->owners > 0 || node->boxes > 0 || node->housed.node != nullptr) return;
  for (segment* run = node->first.next; run != nullptr;) {
    segment* next = run->next;
    ::operator delete(run);
    run = next;
  }
  free_block(node, node->first.distance, sizeof *node);
}

}  // namespace vantor

#ifdef TAV_SANITIZE
// The address of a box stands in its slot's place, which may begin at any byte of a body.
extern "C" const char* __lsan_default_options() {
  return "use_unaligned=1";
}
#endif
