// The nodes of classes by the paths of their names.
#ifndef LINT_ENTRIES_H
#define LINT_ENTRIES_H

#include <span>
#include <vector>

#include "lint/index.h"

namespace lint {

// The entries of one class, which is asked for again and again: built at the first question about
// it.
class entry_finder {
 public:
  explicit entry_finder(const index& all) : all_(all) {}

  // The entry that the names lead to, from the outermost, or the n-th behind it that has its name;
  // the innermost that there is where they lead nowhere, and then `is_whole` is false.
  node_place find(const node_place& of_class, std::span<const std::string_view> path,
                  bool& is_whole, size_t n = 0);
  // The first entry of that name, wherever in the class it stands; else the class.
  node_place find_anywhere(const node_place& of_class, std::string_view name);

 private:
  struct key {
    uint32_t around;  // node
    std::string_view name;
  };
  struct by_key {
    using key = entry_finder::key;
    static uint32_t hash(const key& one) {
      return by_view::hash(one.name) + one.around * 0x9e3779b1;
    }
    static bool equal(const key& a, const key& b) {
      return a.around == b.around && by_view::equal(a.name, b.name);
    }
  };
  // The entries of the same name beside each other.
  struct chained {
    uint32_t node;
    uint32_t next;
  };

  void build(const node_place& of_class);
  void name_entries();

  const index& all_;
  node_place built_{UINT32_MAX, 0, 0};
  dd_index<by_key, uint32_t> first_{};  // into entries_
  std::vector<chained> entries_{};
  dd_index<by_view, uint32_t> named_{};  // nodes; built when it is asked for
  bool is_named_ = false;
};

}  // namespace lint

#endif
