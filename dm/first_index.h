// A value under each key; the first one stays. Keys are borrowed texts or numbers.
#ifndef DM_FIRST_INDEX_H
#define DM_FIRST_INDEX_H

#include "dd/index.h"

namespace dm {

// `By` is dd_by_name or dd_by_number.
template <class By>
class first_index {
 public:
  using key_type = typename By::key;

  // Adds the value unless the key is there; gives the one that stands.
  int64_t add(key_type key, int64_t value) {
    if ((used_ + 1) * 2 > slots_.size()) grow();
    slot& found = slots_[place_of(key, By::hash(key))];
    if (found.is_used) return found.value;
    found = {key, By::hash(key), true, value};
    ++used_;
    return value;
  }

  // The value under the key, or null.
  const int64_t* find(key_type key) const {
    if (slots_.empty()) return nullptr;
    const slot& found = slots_[place_of(key, By::hash(key))];
    return found.is_used ? &found.value : nullptr;
  }

 private:
  struct slot {
    key_type key;
    uint32_t hash;
    bool is_used;
    int64_t value;
  };

  size_t place_of(key_type key, uint32_t hash) const {
    size_t at = hash & (slots_.size() - 1);
    while (slots_[at].is_used && !(slots_[at].hash == hash && By::equal(slots_[at].key, key))) {
      at = (at + 1) & (slots_.size() - 1);
    }
    return at;
  }

  void grow() {
    std::vector<slot> old(slots_.empty() ? 64 : slots_.size() * 2);
    old.swap(slots_);
    for (const slot& s : old) {
      if (s.is_used) slots_[place_of(s.key, s.hash)] = s;
    }
  }

  std::vector<slot> slots_;  // a power of two
  size_t used_ = 0;
};

}  // namespace dm

#endif
