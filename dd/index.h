// An index of values by a key, which gives what a walk from the start would give: the first match.
//
// Keys are borrowed texts or numbers. Entries with equal keys keep the order in which they were
// added: probing is linear, and growing places them again in that order.
#ifndef DD_INDEX_H
#define DD_INDEX_H

#include <algorithm>
#include <bit>
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

template <class By, class Value = tav_flist_t*>
class dd_index {
 public:
  using key_type = typename By::key;

  // Keeps the memory for what comes next, but not slots by far too many: each clearing visits them.
  void clear() {
    const bool is_sparse = slots_.size() > 64 + 4 * entries_.size();
    entries_.clear();
    if (is_sparse) slots_.clear();
    std::fill(slots_.begin(), slots_.end(), slot{});
  }

  // Makes room for so many entries in all.
  void reserve(size_t count) {
    entries_.reserve(count);
    if (count * 2 > slots_.size()) resize(std::bit_ceil(count * 2));
  }

  // Whoever knows a key's hash already hands it in.
  void add(key_type key, Value value) { add(key, By::hash(key), value); }
  void add(key_type key, uint32_t hash, Value value) {
    entries_.push_back({key, value, hash, false});
    if (entries_.size() * 2 > slots_.size()) return resize(std::max(slots_.size() * 2, FEWEST));
    place(static_cast<uint32_t>(entries_.size()));
  }

  // Adds the value unless the key is there; gives the one that stands.
  Value add_first(key_type key, Value value) { return add_first(key, By::hash(key), value); }
  Value add_first(key_type key, uint32_t hash, Value value) {
    if (const entry* there = look(key, hash, any)) return there->value;
    add(key, hash, value);
    return value;
  }

  // The first value of that key, or null; valid until one is added.
  const Value* find(key_type key) const { return find(key, By::hash(key)); }
  const Value* find(key_type key, uint32_t hash) const {
    const entry* found = look(key, hash, any);
    return found != nullptr ? &found->value : nullptr;
  }

  // Says that a key of that hash will be sought soon: memory is asked for its slot.
  void expect(uint32_t hash) const {
    if (!slots_.empty()) __builtin_prefetch(&slots_[first_slot(hash)]);
  }

  // Forgets one value; others of the same key stay.
  void remove(key_type key, Value value) {
    const entry* found =
        look(key, By::hash(key), [&value](const entry& e) { return e.value == value; });
    if (found != nullptr) entries_[static_cast<size_t>(found - entries_.data())].is_removed = true;
  }

 private:
  struct entry {
    key_type key;  // not looked at any more once removed
    Value value;
    uint32_t hash;
    bool is_removed;
  };
  // The hash stands here too, so that a search reads no entry in vain.
  struct slot {
    uint32_t hash;
    uint32_t position;  // in entries_ plus one, 0 for free
  };

  static constexpr size_t FEWEST = 16;  // slots

  static bool any(const entry&) { return true; }
  size_t first_slot(uint32_t hash) const { return hash & (slots_.size() - 1); }
  size_t next_slot(size_t at) const { return (at + 1) & (slots_.size() - 1); }

  template <class Wanted>
  const entry* look(key_type key, uint32_t hash, Wanted wanted) const {
    if (slots_.empty()) return nullptr;
    for (size_t at = first_slot(hash); slots_[at].position != 0; at = next_slot(at)) {
      if (slots_[at].hash != hash) continue;
      const entry& e = entries_[slots_[at].position - 1];
      if (!e.is_removed && By::equal(e.key, key) && wanted(e)) return &e;
    }
    return nullptr;
  }

  void place(uint32_t position) {
    const uint32_t hash = entries_[position - 1].hash;
    size_t at = first_slot(hash);
    while (slots_[at].position != 0) at = next_slot(at);
    slots_[at] = {hash, position};
  }

  // Every entry is placed anew.
  void resize(size_t size) {
    slots_.assign(size, slot{});
    for (uint32_t i = 1; i <= entries_.size(); ++i) place(i);
  }

  std::vector<entry> entries_;
  std::vector<slot> slots_;  // a power of two
};

#endif
