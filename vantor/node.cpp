#include "vantor/node.h"

#include <memory>

#include "vantor/reap.h"

namespace vantor {

namespace {

// A segment with `capacity` slots behind a record that ends with it. Throws std::bad_alloc.
void* allocate(size_t record, uint32_t capacity) {
  return ::operator new(record + capacity * sizeof(slot));
}

segment* new_segment(uint32_t capacity) {
  return new (allocate(sizeof(segment), capacity)) segment{nullptr, capacity, 0};
}

uint64_t bit_of(uint32_t field) {
  return uint64_t{1} << (field % 64);
}

slot& append(segment& run) {
  slot* fresh = new (run.end()) slot;
  fresh->field = 0;
  ++run.used;
  return *fresh;
}

box* new_box(tav_node& body, slot& s) {
  auto* made = new box;
  made->refs = 1;
  made->body = &body;
  made->number = s.number;
  ++body.boxes;
  return made;
}

void release_box(box* b) noexcept {
  if (--b->refs > 0) return;
  if (--b->body->boxes == 0 && b->body->owners == 0) free_node(b->body);
  delete b;
}

// Fills a free slot of another body with what `from`, a slot of `body`, holds.
void share_slot(tav_node& body, slot& from, slot& to) {
  to.form = from.form;
  to.lent = false;
  switch (from.form) {
    case slot_form::NUMBER:
      if (from.lent) {
        to.boxed = new_box(body, from);
        to.form = slot_form::BOXED;
      } else {
        std::memcpy(to.number, from.number, sizeof to.number);
      }
      break;
    case slot_form::BOXED:
      to.boxed = share(from.boxed);
      break;
    case slot_form::OBJECT:
      to.object = share(from.object);
      break;
    case slot_form::ELEMENTS:
      to.elements = from.elements;
      share_elements(*to.elements);
      break;
  }
  to.field = from.field;
}

}  // namespace

tav_node* new_node(uint32_t slots) {
  return new (allocate(sizeof(tav_node), slots)) tav_node{1, 0, 0, {nullptr, slots, 0}};
}

tav_node* clone(tav_node& from) {
  uint32_t count = 1;  // room for the field that is likely to come
  each_slot(from, [&](slot&) { ++count; });
  std::unique_ptr<tav_node, reap_node> made(new_node(count));
  each_slot(from, [&](slot& s) { share_slot(from, s, append(made->first)); });
  made->met = from.met;
  return made.release();
}

slot* find_slot(tav_node& node, uint32_t field) {
  if ((node.met & bit_of(field)) == 0) return nullptr;
  for (segment* run = &node.first; run != nullptr; run = run->next) {
    for (slot& s : *run) {
      if (s.field == field) return &s;
    }
  }
  return nullptr;
}

// The field's slot, or the first free one.
static slot* find_or_hole(tav_node& node, uint32_t field) {
  slot* hole = nullptr;
  for (segment* run = &node.first; run != nullptr; run = run->next) {
    for (slot& s : *run) {
      if (s.field == field) return &s;
      if (s.field == 0 && hole == nullptr) hole = &s;
    }
  }
  return hole;
}

slot& slot_for(tav_node& node, uint32_t field) {
  const uint64_t bit = bit_of(field);
  if ((node.met & bit) != 0) {
    if (slot* s = find_or_hole(node, field)) return *s;
  }
  segment* last = &node.first;
  while (last->next != nullptr) last = last->next;
  if (last->used == last->capacity) last = last->next = new_segment(last->capacity + 2);
  node.met |= bit;
  return append(*last);
}

element_array* find_elements(tav_node& node, uint32_t field) {
  const slot* s = find_slot(node, field);
  return s != nullptr ? s->elements : nullptr;
}

void* value_of(slot& s) {
  switch (s.form) {
    case slot_form::NUMBER:
      return s.number;
    case slot_form::BOXED:
      return s.boxed->number;
    default:
      return lend(s.field, s.object);
  }
}

void clear_value(slot& s) noexcept {
  if (s.form == slot_form::OBJECT) release(s.object);
  if (s.form == slot_form::BOXED) release_box(s.boxed);
  s.field = 0;
}

void free_node(tav_node* node) noexcept {
  for (segment* run = node->first.next; run != nullptr;) {
    segment* next = run->next;
    ::operator delete(run);
    run = next;
  }
  ::operator delete(node);
}

}  // namespace vantor
