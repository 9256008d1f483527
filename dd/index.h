// An index of elements by a key, which gives what a walk from the start would give: the first
// match.
//
// Keys are borrowed texts or numbers. Entries with equal keys keep the order in which they were
// added: probing is linear, and growing adds them again in that order.
#ifndef DD_INDEX_H
#define DD_INDEX_H

#include <vector>

#include "dd/fold.h"
#include "dd/vantor.h"

struct dd_by_name {
  using key = const char*;
  static uint32_t hash(key name) { return dd_hash(name); }
  static bool equal(key a, key b) { return dd_equal(a, b); }
};

struct dd_by_number {
  using key = int32_t;
  static uint32_t hash(key number) { return static_cast<uint32_t>(number) * 0x9e3779b1u; }
  static bool equal(key a, key b) { return a == b; }
};

template <class By>
class dd_index {
 public:
  void clear() { *this = dd_index(); }

  void add(typename By::key key, tav_flist_t* element) {
    entries_.push_back({key, By::hash(key), element});
    if (entries_.size() * 2 > slots_.size()) return grow();
    place(static_cast<uint32_t>(entries_.size() - 1));
  }

  // The first element of that key, or null.
  tav_flist_t* find(typename By::key key) const {
    const entry* found = look(key, [](const entry&) { return true; });
    return found != nullptr ? found->element : nullptr;
  }

  // Forgets one element; others of the same key stay.
  void remove(typename By::key key, const tav_flist_t* element) {
    auto* found =
        const_cast<entry*>(look(key, [element](const entry& e) { return e.element == element; }));
    if (found != nullptr) found->element = nullptr;
  }

 private:
  struct entry {
    typename By::key key;
    uint32_t hash;
    tav_flist_t* element;  // null once removed; the key is then not looked at any more
  };

  size_t first_slot(uint32_t hash) const { return hash & (slots_.size() - 1); }
  size_t next_slot(size_t slot) const { return (slot + 1) & (slots_.size() - 1); }

  template <class Wanted>
  const entry* look(typename By::key key, Wanted wanted) const {
    if (slots_.empty()) return nullptr;
    const uint32_t hash = By::hash(key);
    for (size_t slot = first_slot(hash); slots_[slot] != 0; slot = next_slot(slot)) {
      const entry& e = entries_[slots_[slot] - 1];
      if (e.hash == hash && e.element != nullptr && By::equal(e.key, key) && wanted(e)) return &e;
    }
    return nullptr;
  }

  void place(uint32_t position) {
    size_t slot = first_slot(entries_[position].hash);
    while (slots_[slot] != 0) slot = next_slot(slot);
    slots_[slot] = position + 1;
  }

  void grow() {
    const size_t size = slots_.empty() ? 16 : slots_.size() * 2;
    slots_.assign(size, 0);
    for (uint32_t i = 0; i < entries_.size(); ++i) place(i);
  }

  std::vector<entry> entries_;
  std::vector<uint32_t> slots_;  // a power of two; position in entries_ plus one, 0 for free
};

#endif
