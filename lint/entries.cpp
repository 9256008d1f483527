#include "lint/entries.h"

#include <algorithm>

#include "dd/fold.h"

namespace lint {

using syntax::node_kind;

std::string_view entry_finder::name_of(const entry& one) const {
  return lint::name_of(all_, node_place{read_.source, read_.definition, one.node});
}

// Of names in either case.
static int compare_names(std::string_view a, std::string_view b) {
  if (std::ranges::lexicographical_compare(a, b, {}, dd_fold, dd_fold)) return -1;
  return by_view::equal(a, b) ? 0 : 1;
}

template <class Name>
int entry_finder::compare(const entry& a, const entry& b, Name name) const {
  if (a.hash != b.hash) return a.hash < b.hash ? -1 : 1;
  if (a.around != b.around) return a.around < b.around ? -1 : 1;
  return compare_names(name_of(a), name());
}

void entry_finder::sort(entries& all) const {
  std::ranges::sort(all, [this](const entry& a, const entry& b) {
    const int order = compare(a, b, [&] { return name_of(b); });
    return order != 0 ? order < 0 : a.node < b.node;
  });
}

void entry_finder::read(const node_place& of_class) {
  if (read_.source == of_class.source && read_.definition == of_class.definition) return;
  const auto nodes = syntax::nodes_of(definition_of(all_, of_class));
  std::vector<uint32_t> around;  // the nodes that are open
  entries_.clear();
  anywhere_.clear();
  read_ = of_class;
  for (uint32_t i = 0; i < nodes.size(); ++i) {
    while (!around.empty() &&
           nodes[around.back()].first + nodes[around.back()].count <= nodes[i].first)
      around.pop_back();
    const std::string_view name = name_of({0, 0, i});
    if (nodes[i].meant == node_kind::ENTRY && !name.empty() && !around.empty())
      entries_.push_back({by_view::hash(name), around.back(), i});
    if (nodes[i].meant != node_kind::ATTRIBUTE) around.push_back(i);
  }
  sort(entries_);
}

const entry_finder::entry* entry_finder::find_in(const entries& all, uint32_t around,
                                                 std::string_view name, size_t n) const {
  const entry wanted{by_view::hash(name), around, 0};
  const auto order = [&](const entry& each) { return compare(each, wanted, [&] { return name; }); };
  const auto first =
      std::ranges::partition_point(all, [&](const entry& each) { return order(each) < 0; });
  const auto end =
      std::partition_point(first, all.end(), [&](const entry& each) { return order(each) == 0; });
  if (first == end) return nullptr;
  return &first[static_cast<ptrdiff_t>(std::min(n, static_cast<size_t>(end - first) - 1))];
}

node_place entry_finder::find_anywhere(const node_place& of_class, std::string_view name) {
  read(of_class);
  if (anywhere_.empty()) {
    anywhere_ = entries_;
    for (entry& each : anywhere_) each.around = ANYWHERE;
    sort(anywhere_);
  }
  const entry* found = find_in(anywhere_, ANYWHERE, name, 0);
  return {of_class.source, of_class.definition, found != nullptr ? found->node : of_class.node};
}

node_place entry_finder::find(const node_place& of_class, std::span<const std::string_view> path,
                              bool& is_whole, size_t n) {
  read(of_class);
  node_place at = of_class;
  is_whole = true;
  for (const std::string_view& name : path) {
    const bool is_last = &name == &path.back();
    const entry* found = find_in(entries_, at.node, name, is_last ? n : 0);
    is_whole = found != nullptr;
    if (!is_whole) return at;
    at.node = found->node;
  }
  return at;
}

}  // namespace lint
