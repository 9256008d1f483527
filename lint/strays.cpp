#include "lint/strays.h"

#include <algorithm>

namespace lint {

using syntax::definition;
using syntax::node_kind;

static bool closes_nothing(const definition& one) {
  return nodes_of(one)[0].meant == node_kind::BROKEN &&
         tokens_of(one)[0].kind() == DPARSE_KEY_CLOSE;
}

static bool is_entry(const index& in, const node_place& at) {
  node_place number;
  return node_of(in, at).meant == node_kind::FIELD && !find_attribute(in, at, "ID", number);
}

static bool is_class(const definition& one) {
  const node_kind meant = nodes_of(one)[0].meant;
  return meant == node_kind::INTERFACE || meant == node_kind::IMPLEMENTATION;
}

std::vector<stray_entry> strays_in(const index& in, uint32_t source) {
  std::vector<stray_entry> strays;
  const std::vector<definition>& all = in.sources[source].tree.definitions;
  uint32_t end = 0;  // those before were looked at
  for (uint32_t brace = 0; brace < all.size(); ++brace) {
    if (!closes_nothing(all[brace])) continue;
    uint32_t first = brace;
    while (first > end && is_entry(in, {source, first - 1, 0})) --first;
    const bool is_behind_class = first > end && is_class(all[first - 1]);
    for (uint32_t each = first; is_behind_class && each < brace; ++each)
      strays.push_back({each, first - 1});
    end = brace;
  }
  return strays;
}

const stray_entry* find_stray(const std::vector<stray_entry>& strays, uint32_t definition) {
  const auto found = std::ranges::lower_bound(strays, definition, {}, &stray_entry::definition);
  return found != strays.end() && found->definition == definition ? &*found : nullptr;
}

}  // namespace lint
