// A hash table from keys to values. A key may have several values; find gives the one added first.
//
// Keys are borrowed texts or numbers. Linear probing; a slot per key. The values of one key form
// a ring in the order of adding, and the slot leads to the last, so that both ends are one step
// away. Nobody can choose keys that collide: hashes are keyed (dd/hash.h).
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

  // Forgets all, but keeps the memory. More than 64 slots and 4 for each value are given up,
  // because clearing visits every slot.
  void clear() {
    const bool is_sparse = slots_.size() > 64 + 4 * entries_.size();
    entries_.clear();
    if (is_sparse) slots_.clear();
    std::fill(slots_.begin(), slots_.end(), slot{});
  }

  // Makes room for `count` values in all.
  void reserve(size_t count) {
    entries_.reserve(count);
    if (count * 2 > slots_.size()) resize(std::bit_ceil(count * 2));
  }

  // The second form takes the key's hash from a caller that has computed it already.
  void add(key_type key, Value value) { add(key, By::hash(key), value); }
  void add(key_type key, uint32_t hash, Value value) {
    make_room();
    add_at(slot_of(key, hash), key, hash, value);
  }

  // Adds the value unless the key has one; gives the key's first value.
  Value add_first(key_type key, Value value) { return add_first(key, By::hash(key), value); }
  Value add_first(key_type key, uint32_t hash, Value value) {
    make_room();
    const size_t at = slot_of(key, hash);
    if (is_used(slots_[at])) return first_of(slots_[at]).value;
    add_at(at, key, hash, value);
    return value;
  }

  // The first value of that key, or null; the pointer is valid until a value is added.
  const Value* find(key_type key) const { return find(key, By::hash(key)); }
  // The key may be of any type that By compares with its own.
  template <class Key>
  const Value* find(const Key& key, uint32_t hash) const {
    if (slots_.empty()) return nullptr;
    const slot& found = slots_[slot_of(key, hash)];
    return is_used(found) ? &first_of(found).value : nullptr;
  }

  // Prefetches the slot of a key that will be looked up soon.
  void prefetch(uint32_t hash) const {
    if (!slots_.empty()) __builtin_prefetch(&slots_[first_slot(hash)]);
  }

  // Removes one value; others of the same key stay. Takes as many steps as the key has values that
  // were added before this one.
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
  // A position is an index into entries_ plus 1; 0 means none.
  struct entry {
    Value value;
    uint32_t next;  // position of the key's next value, after the last the first; 0: removed
    key_type key;   // must not be read once removed: its text may be gone
  };
  // Keeps the hash, so that a search reads an entry only where the hash is equal.
  struct slot {
    uint32_t hash;
    uint32_t position;  // of the key's last value; 0: free
  };

  static constexpr size_t FEWEST = 16;  // slots

  entry& at(uint32_t position) { return entries_[position - 1]; }
  const entry& at(uint32_t position) const { return entries_[position - 1]; }
  const entry& first_of(const slot& used) const { return at(at(used.position).next); }
  // Whether the slot has a key with at least one value that was not removed.
  bool is_used(const slot& s) const { return s.position != 0 && at(s.position).next != 0; }

  size_t first_slot(uint32_t hash) const { return hash & (slots_.size() - 1); }
  size_t next_slot(size_t at) const { return (at + 1) & (slots_.size() - 1); }

  // The key's slot. For a new key the one it will get: a slot of the same hash whose values were
  // all removed, else a free one.
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

  // Keeps at most half of the slots in use.
  void make_room() {
    if ((entries_.size() + 1) * 2 > slots_.size()) resize(std::max(slots_.size() * 2, FEWEST));
  }

  void add_at(size_t place, key_type key, uint32_t hash, Value value) {
    const auto position = static_cast<uint32_t>(entries_.size() + 1);
    slot& own = slots_[place];
    const bool is_first = !is_used(own);
    entries_.push_back({value, is_first ? position : at(own.position).next, key});
    if (!is_first) at(own.position).next = position;
    own = {hash, position};
  }

  // Takes the entry after position `before` out of the ring.
  void unlink(slot& own, uint32_t before) {
    const uint32_t gone = at(before).next;
    at(before).next = at(gone).next;
    at(gone).next = 0;
    if (own.position == gone) own.position = before;
  }

  // Enters all slots in use into a new table; those whose values were all removed are left out.
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
  std::vector<slot> slots_;  // their number is 0 or a power of two
};

#endif
