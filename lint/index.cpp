#include "lint/index.h"

#include <algorithm>
#include <bit>

#include "dd/fold.h"
#include "dd/hash.h"
#include "dparse/tokens.h"
#include "lint/strays.h"

namespace lint {

using syntax::node_kind;

uint32_t by_view::hash(key name) {
  return dd_hash(name.data(), name.size());
}

bool by_view::equal(key a, key b) {
  return std::ranges::equal(a, b, {}, dd_fold, dd_fold);
}

// --- Building ------------------------------------------------------------------------------------

// Where the slot of the name is, or that which it will get.
static size_t slot_of(const index& in, const std::vector<name_slot>& slots, std::string_view name,
                      uint32_t hash) {
  for (size_t at = hash;; ++at) {
    at &= slots.size() - 1;
    const name_slot& slot = slots[at];
    if (slot.first == defined::NONE) return at;
    if (slot.hash == hash && by_view::equal(name_of(in, in.definitions[slot.first]), name))
      return at;
  }
}

static uint32_t find_first(const index& in, node_kind kind, std::string_view name) {
  const std::vector<name_slot>& slots = in.by_name[static_cast<size_t>(kind)];
  return slots[slot_of(in, slots, name, by_view::hash(name))].first;
}

static void add(index& to, const node_place& at, std::vector<uint32_t>& last) {
  const node_kind kind = node_of(to, at).meant;
  const std::string_view name = name_of(to, at);
  if (name.empty()) return;
  const auto start = static_cast<uint32_t>(name.data() - text_of(to, at).data());
  const auto place = static_cast<uint32_t>(to.definitions.size());
  const uint32_t hash = by_view::hash(name);
  std::vector<name_slot>& slots = to.by_name[static_cast<size_t>(kind)];
  name_slot& slot = slots[slot_of(to, slots, name, hash)];
  to.definitions.push_back({at, start, static_cast<uint32_t>(name.size()), defined::NONE, kind});
  last.push_back(place);
  if (slot.first == defined::NONE) {
    slot = {hash, place};
  } else {
    to.definitions[last[slot.first]].next = place;
    last[slot.first] = place;
  }
}

// Each name is marked once, however often it is used.
static void mark_used(index& to, std::string_view field) {
  const uint32_t first = find_first(to, node_kind::FIELD, field);
  if (first == defined::NONE || to.definitions[first].is_used) return;
  for (uint32_t i = first; i != defined::NONE; i = to.definitions[i].next)
    to.definitions[i].is_used = true;
}

static void mark_uses(index& to, node_place at) {
  const size_t count = nodes_of(definition_of(to, at)).size();
  for (at.node = 1; at.node < count; ++at.node)
    if (node_of(to, at).meant == node_kind::ENTRY) mark_used(to, name_of(to, at));
}

// Growing as they are filled, they would take twice as much for a while.
static void reserve(index& to, std::vector<uint32_t>& last) {
  size_t counts[3] = {};
  for (const source& each : to.sources)
    for (const syntax::definition& definition : each.tree.definitions)
      if (const node_kind meant = nodes_of(definition)[0].meant; meant <= node_kind::IMPLEMENTATION)
        ++counts[static_cast<size_t>(meant)];
  for (size_t i = 0; i < std::size(counts); ++i)
    to.by_name[i].resize(std::bit_ceil(counts[i] + counts[i] / 2 + 1));
  to.definitions.reserve(counts[0] + counts[1] + counts[2]);
  last.reserve(to.definitions.capacity());
}

index index_of(std::span<const source> sources) {
  index result{sources};
  std::vector<uint32_t> last;  // of the name of which a definition is the first
  reserve(result, last);
  std::vector<std::string_view> stray_names;
  for (uint32_t source = 0; source < sources.size(); ++source) {
    const auto count = static_cast<uint32_t>(sources[source].tree.definitions.size());
    const std::vector<stray_entry> strays = strays_in(result, source);
    for (uint32_t i = 0; i < count; ++i)
      if (find_stray(strays, i) == nullptr) add(result, {source, i, 0}, last);
    for (const stray_entry& each : strays)
      stray_names.push_back(name_of(result, node_place{source, each.definition, 0}));
  }
  for (size_t i = 0; i < result.definitions.size(); ++i)
    if (result.definitions[i].kind == node_kind::INTERFACE)
      mark_uses(result, result.definitions[i].where);
  for (const std::string_view name : stray_names) mark_used(result, name);
  return result;
}

// --- Looking up ----------------------------------------------------------------------------------

std::string_view name_of(const index& in, const node_place& at) {
  return syntax::name_of(text_of(in, at), definition_of(in, at), node_of(in, at));
}

const defined* find(const index& in, node_kind kind, std::string_view name) {
  const uint32_t first = find_first(in, kind, name);
  return first != defined::NONE ? &in.definitions[first] : nullptr;
}

bool find_attribute(const index& in, const node_place& around, std::string_view keyword,
                    node_place& found) {
  const int wanted = dparse::keyword_number(keyword.data(), keyword.size());
  bool is_found = false;
  each_member(in, around, [&](const node_place& at) {
    const bool is_wanted =
        node_of(in, at).meant == node_kind::ATTRIBUTE && keyword_of(in, at) == wanted &&
        (wanted != DPARSE_TOKEN_WORD || by_view::equal(name_of(in, at), keyword));
    if (is_wanted) found = at;
    is_found = is_found || is_wanted;
  });
  return is_found;
}

// --- Parts ---------------------------------------------------------------------------------------

// The tokens of a node from the one on, at most so many.
static span tokens_span(const index& in, const node_place& at, size_t first, size_t count) {
  const syntax::definition& definition = definition_of(in, at);
  const auto tokens = syntax::tokens_of(definition, node_of(in, at));
  first = std::min(first, tokens.size() - 1);
  const size_t last = std::min(first + count, tokens.size()) - 1;
  const uint64_t start = syntax::place_of(definition, tokens[first]);
  const uint64_t last_start = syntax::place_of(definition, tokens[last]);
  const size_t length = syntax::text_of(text_of(in, at), definition, tokens[last]).size();
  return {at.source, start, last_start + length - start};
}

span name_span(const index& in, const node_place& at) {
  const node_kind meant = node_of(in, at).meant;
  const bool is_class = meant == node_kind::INTERFACE || meant == node_kind::IMPLEMENTATION;
  const bool begins_with_name = meant == node_kind::ATTRIBUTE || meant == node_kind::BROKEN;
  return tokens_span(in, at, begins_with_name ? 0 : is_class ? 2 : 1, 1);
}

span type_span(const index& in, const node_place& at) {
  return tokens_span(in, at, 0, 1);
}

span value_span(const index& in, const node_place& at) {
  constexpr size_t AROUND = 3;  // keyword, "=" and ";"
  const size_t count = node_of(in, at).count;
  return tokens_span(in, at, 2, count > AROUND ? count - AROUND : 1);
}

bool holds_value(int kind) {
  return kind == DPARSE_TOKEN_WORD || kind >= DPARSE_TOKEN_STRING;
}

// Where it is broken, anything may stand behind the keyword.
static bool has_value(const index& in, const node_place& at) {
  constexpr size_t VALUE = 2;
  const auto tokens = syntax::tokens_of(definition_of(in, at), node_of(in, at));
  return tokens.size() > VALUE && holds_value(tokens[VALUE].kind());
}

std::string_view attribute_text(const index& in, const node_place& around,
                                std::string_view keyword) {
  node_place found;
  if (!find_attribute(in, around, keyword, found) || !has_value(in, found)) return {};
  return text_of(in, value_span(in, found));
}

uint64_t line_at(const syntax::tree& tree, uint64_t byte) {
  const size_t block = byte / syntax::LINE_BLOCK;
  if (tree.lines.empty()) return 1;
  const size_t known = std::min(block, tree.lines.size() - 1);
  const std::string_view text = std::string_view(tree.text).substr(
      known * syntax::LINE_BLOCK, byte - known * syntax::LINE_BLOCK);
  return 1 + tree.lines[known] + static_cast<uint64_t>(std::ranges::count(text, '\n'));
}

std::string place_text(const index& in, const span& where) {
  const source& from = in.sources[where.source];
  return from.name + ":" + std::to_string(line_at(from.tree, where.start));
}

}  // namespace lint
