#include "lint/entries.h"

namespace lint {

using syntax::node_kind;

void entry_finder::build(const node_place& of_class) {
  const syntax::definition& definition = definition_of(all_, of_class);
  const auto nodes = syntax::nodes_of(definition);
  std::vector<uint32_t> around;  // the nodes that are open
  std::vector<uint32_t> last;    // of the name whose first a chained one is
  first_.clear();
  entries_.clear();
  built_ = of_class;
  is_named_ = false;
  for (uint32_t i = 0; i < nodes.size(); ++i) {
    while (!around.empty() &&
           nodes[around.back()].first + nodes[around.back()].count <= nodes[i].first)
      around.pop_back();
    const std::string_view name = syntax::name_of(text_of(all_, of_class), definition, nodes[i]);
    if (nodes[i].meant == node_kind::ENTRY && !name.empty() && !around.empty()) {
      const auto place = static_cast<uint32_t>(entries_.size());
      entries_.push_back({i, UINT32_MAX});
      last.push_back(place);
      const uint32_t first = first_.add_first({around.back(), name}, place);
      if (first != place) entries_[last[first]].next = place;
      last[first] = place;
    }
    if (nodes[i].meant != node_kind::ATTRIBUTE) around.push_back(i);
  }
}

void entry_finder::name_entries() {
  const syntax::definition& definition = definition_of(all_, built_);
  is_named_ = true;
  named_.clear();
  for (const chained& each : entries_) {
    const syntax::node& node = definition.nodes[each.node];
    named_.add_first(syntax::name_of(text_of(all_, built_), definition, node), each.node);
  }
}

node_place entry_finder::find_anywhere(const node_place& of_class, std::string_view name) {
  if (built_.source != of_class.source || built_.definition != of_class.definition) build(of_class);
  if (!is_named_) name_entries();
  const uint32_t* node = named_.find(name);
  return {of_class.source, of_class.definition, node != nullptr ? *node : of_class.node};
}

node_place entry_finder::find(const node_place& of_class, std::span<const std::string_view> path,
                              bool& is_whole, size_t n) {
  if (built_.source != of_class.source || built_.definition != of_class.definition) build(of_class);
  node_place at = of_class;
  is_whole = true;
  for (const std::string_view& name : path) {
    const uint32_t* place = first_.find({at.node, name});
    is_whole = place != nullptr;
    if (!is_whole) return at;
    at.node = entries_[*place].node;
    const bool is_last = &name == &path.back();
    for (uint32_t next = entries_[*place].next; is_last && n > 0 && next != UINT32_MAX; --n) {
      at.node = entries_[next].node;
      next = entries_[next].next;
    }
  }
  return at;
}

}  // namespace lint
