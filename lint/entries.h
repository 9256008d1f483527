// The nodes of classes by the paths of their names.
#ifndef LINT_ENTRIES_H
#define LINT_ENTRIES_H

#include <span>
#include <vector>

#include "lint/index.h"

namespace lint {

// The entries of one class, which is asked for again and again: read at the first question about
// it. A class may have hundreds of thousands, so that little is kept of each.
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
  static constexpr uint32_t ANYWHERE = UINT32_MAX;

  struct entry {
    uint32_t hash;    // of the name
    uint32_t around;  // the node that it stands in, or ANYWHERE
    uint32_t node;
  };
  // Sorted by hash, what is around, name and node.
  using entries = std::vector<entry>;

  void read(const node_place& of_class);
  void sort(entries& all) const;
  std::string_view name_of(const entry& one) const;
  // Less than, equal to or greater than 0. `name` gives that of b, and is asked for where all else
  // is equal.
  template <class Name>
  int compare(const entry& a, const entry& b, Name name) const;
  // The n-th of that name in the node; else the last before it, or null where there is none.
  const entry* find_in(const entries& all, uint32_t around, std::string_view name, size_t n) const;

  const index& all_;
  node_place read_{UINT32_MAX, 0, 0};  // the class
  entries entries_{};
  entries anywhere_{};  // the same, each as if it stood anywhere; made when it is asked for
};

}  // namespace lint

#endif
