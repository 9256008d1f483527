// The key of a name is the name with its ASCII capitals made small. Also hash tables by such keys
// and by numbers.
#ifndef DM_FOLDED_H
#define DM_FOLDED_H

#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

#include "dd/fold.h"
#include "dd/hash.h"

namespace dm {

inline std::string folded(std::string_view name) {
  std::string key(name);
  for (char& c : key) c = static_cast<char>(dd_fold(c));
  return key;
}

// The keys below "/a" are those from "/a/" to before "/a0": '0' is the character after '/'.
struct key_range {
  std::string from, to;
};
inline key_range keys_below(std::string_view key) {
  const std::string top(key);
  return {top + "/", top + "0"};
}

// Instead of std::hash, for which somebody could write a definition file with colliding names.
struct hash_of_input {
  size_t operator()(std::string_view key) const { return dd_hash(key.data(), key.size()); }
  size_t operator()(int32_t number) const { return dd_hash_number(number); }
};

using key_set = std::unordered_set<std::string, hash_of_input>;
using number_set = std::unordered_set<int32_t, hash_of_input>;
template <class Value>
using key_map = std::unordered_map<std::string, Value, hash_of_input>;

}  // namespace dm

#endif
