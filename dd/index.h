// An index of values by a key, which gives what a walk from the start would give: the first match.
//
// Keys are borrowed texts or numbers. Adding and finding take constant time whatever the keys:
// those that are equal stand in a ring, of which one slot knows the last, and the hashes of others
// have a key of their own (dd/hash.h). Slots are probed linearly.
#ifndef DD_INDEX_H
#define DD_INDEX_H

#include <algorithm>
#include <bit>
#include <vector>

#include "dd/fold.h"
#include "dd/hash.h"
#include "dd/vantor.h"

struct dd_by_name {
  using key = const char*;
  static uint32_t hash(key name) { return dd_hash(name); }
  static bool equal(key a, key b) { return dd_equal(a, b); }
  static bool equal(key a, std::string_view b) { return dd_equal_to_part(a, b); }
};

struct dd_by_number {
  using key = int32_t;
  static uint32_t hash(key number) { return dd_hash_number(number); }
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
    make_room();
    add_at(slot_of(key, hash), key, hash, value);
  }

  // Adds the value unless the key is there; gives the one that stands.
  Value add_first(key_type key, Value value) { return add_first(key, By::hash(key), value); }
  Value add_first(key_type key, uint32_t hash, Value value) {
    make_room();
    const size_t at = slot_of(key, hash);
    if (is_used(slots_[at])) return first_of(slots_[at]).value;
    add_at(at, key, hash, value);
    return value;
  }

  // The first value of that key, or null; valid until one is added.
  const Value* find(key_type key) const { return find(key, By::hash(key)); }
  // The key may be of any type that By compares with its own.
  template <class Key>
  const Value* find(const Key& key, uint32_t hash) const {
    if (slots_.empty()) return nullptr;
    const slot& found = slots_[slot_of(key, hash)];
    return is_used(found) ? &first_of(found).value : nullptr;
  }

  // Says that a key of that hash will be sought soon: memory is asked for its slot.
  void prefetch(uint32_t hash) const {
    if (!slots_.empty()) __builtin_prefetch(&slots_[first_slot(hash)]);
  }

  // Forgets one value; others of the same key stay. Takes a step for each of them that was added
  // before it.
  void remove(key_type key, Value value) {
    if (slots_.empty()) return;
    slot& found = slots_[slot_of(key, By::hash(key))];
    if (!is_used(found)) return;
    const uint32_t last = found.position;
    uint32_t before = last;
    while (!(at(at(before).next).value == value)) {
      before = at(before).next;
      if (before == last) return;
    }
    unlink(found, before);
  }

 private:
  // Positions are those in entries_ plus one.
  struct entry {
    key_type key;  // not looked at any more once removed
    Value value;
    uint32_t next;  // of the same key, after the last the first; 0: removed
  };
  // The hash stands here too, so that a search reads no entry in vain.
  struct slot {
    uint32_t hash;
    uint32_t position;  // of the last entry of a key; 0: free
  };

  static constexpr size_t FEWEST = 16;  // slots

  entry& at(uint32_t position) { return entries_[position - 1]; }
  const entry& at(uint32_t position) const { return entries_[position - 1]; }
  const entry& first_of(const slot& used) const { return at(at(used.position).next); }
  // Whether entries of a key are there, and were not all removed.
  bool is_used(const slot& s) const { return s.position != 0 && at(s.position).next != 0; }

  size_t first_slot(uint32_t hash) const { return hash & (slots_.size() - 1); }
  size_t next_slot(size_t at) const { return (at + 1) & (slots_.size() - 1); }

  // The key's slot, or the one that it would get: where all of a key of its hash were removed, else
  // a free one.
  template <class Key>
  size_t slot_of(const Key& key, uint32_t hash) const {
    size_t emptied = slots_.size();
    size_t place = first_slot(hash);
    for (; slots_[place].position != 0; place = next_slot(place)) {
      if (slots_[place].hash != hash) continue;
      const entry& last = at(slots_[place].position);
      if (last.next == 0) {
        emptied = place;
      } else if (By::equal(last.key, key)) {
        return place;
      }
    }
    return emptied < slots_.size() ? emptied : place;
  }

  // There is room in entries_ and slots_ for one more.
  void make_room() {
    if ((entries_.size() + 1) * 2 > slots_.size()) resize(std::max(slots_.size() * 2, FEWEST));
  }

  void add_at(size_t place, key_type key, uint32_t hash, Value value) {
    const auto position = static_cast<uint32_t>(entries_.size() + 1);
    slot& own = slots_[place];
    const bool is_first = !is_used(own);
    entries_.push_back({key, value, is_first ? position : at(own.position).next});
    if (!is_first) at(own.position).next = position;
    own = {hash, position};
  }

  // Takes the entry behind that one out of the ring.
  void unlink(slot& own, uint32_t before) {
    const uint32_t gone = at(before).next;
    at(before).next = at(gone).next;
    at(gone).next = 0;
    if (own.position == gone) own.position = before;
  }

  // Every slot in use is placed anew.
  void resize(size_t size) {
    std::vector<slot> old(size);
    old.swap(slots_);
    for (const slot& s : old) {
      if (!is_used(s)) continue;
      size_t place = first_slot(s.hash);
      while (slots_[place].position != 0) place = next_slot(place);
      slots_[place] = s;
    }
  }

  std::vector<entry> entries_;
  std::vector<slot> slots_;  // a power of two
};

#endif
