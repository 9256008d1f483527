#include "syntax/tree.h"

#include <algorithm>
#include <stdexcept>

#include "syntax/parse.h"
#include "syntax/places.h"
#include "syntax/scan.h"

namespace syntax {

static void refuse_too_long(uint64_t size) {
  if (size > MOST_BYTES) throw std::length_error("The text is too long for a tree.");
}

static size_t end_of(const definition& definition) {
  return definition.start + definition.length;
}

tree read(std::string text) {
  refuse_too_long(text.size());
  tree result{std::move(text), {}, {}};
  parsing in{result.text, 0, 0};
  while (parse_definition(in, result.definitions)) continue;
  count_lines(result, 0);
  return result;
}

// --- Edits ---------------------------------------------------------------------------------------

static auto definition_behind(const tree& tree, uint64_t byte) {
  return std::partition_point(tree.definitions.begin(), tree.definitions.end(),
                              [byte](const definition& each) { return end_of(each) <= byte; });
}

// The first definition that is read differently, or may be, when the text changes from there on.
// A class that lacks its closing brace may have looked at any number behind it.
static size_t first_touched(const tree& tree, uint64_t start) {
  const auto is_touched = [start](const definition& each) {
    return end_of(each) + each.ahead > start;
  };
  return static_cast<size_t>(std::ranges::find_if(tree.definitions, is_touched) -
                             tree.definitions.begin());
}

// Reads definitions until one ends where an old one, shifted, began: from there on all are as they
// were. Gives the index of that old one.
static size_t read_changed(const tree& tree, parsing& in, size_t first, uint64_t settled,
                           uint64_t shift, std::vector<definition>& fresh) {
  const auto& old = tree.definitions;
  for (size_t next = first;;) {
    while (next < old.size() && (old[next].start < settled || old[next].start + shift < in.base))
      ++next;
    if (next < old.size() && old[next].start + shift == in.base) return next;
    if (!parse_definition(in, fresh)) return old.size();
  }
}

static void replace(std::vector<definition>& definitions, size_t first, size_t last,
                    std::vector<definition> fresh) {
  const auto at = definitions.begin() + static_cast<ptrdiff_t>(first);
  const size_t common = std::min(last - first, fresh.size());
  const auto kept = std::move(fresh.begin(), fresh.begin() + static_cast<ptrdiff_t>(common), at);
  if (last - first > common) {
    definitions.erase(kept, definitions.begin() + static_cast<ptrdiff_t>(last));
  } else {
    definitions.insert(kept, std::move_iterator(fresh.begin() + static_cast<ptrdiff_t>(common)),
                       std::move_iterator(fresh.end()));
  }
}

size_t apply(tree& changed, const edit& change) {
  const uint64_t start = std::min<uint64_t>(change.start, changed.text.size());
  const uint64_t removed = std::min<uint64_t>(change.removed, changed.text.size() - start);
  refuse_too_long(changed.text.size() - removed + change.inserted.size());
  const uint64_t shift = change.inserted.size() - removed;  // modulo 2^64, like the sums with it
  const size_t first = first_touched(changed, start);
  const size_t base = first > 0 ? end_of(changed.definitions[first - 1]) : 0;
  changed.text.replace(start, removed, change.inserted);
  parsing in{changed.text, base, base};
  std::vector<definition> fresh;
  const size_t last = read_changed(changed, in, first, start + removed, shift, fresh);
  for (size_t i = last; i < changed.definitions.size(); ++i)
    changed.definitions[i].start += static_cast<uint32_t>(shift);
  const size_t count = fresh.size();
  replace(changed.definitions, first, last, std::move(fresh));
  count_lines(changed, start);
  return count;
}

// --- Tokens and nodes ----------------------------------------------------------------------------

static size_t end_of(std::string_view text, const definition& in, const token& token) {
  const size_t start = place_of(in, token);
  const size_t length = token.kind_and_length & token::LONG;
  return length < token::LONG ? start + length : scan(text, start).end;
}

std::string_view text_of(std::string_view text, const definition& in, const token& token) {
  const size_t start = place_of(in, token);
  return text.substr(start, end_of(text, in, token) - start);
}

std::string_view text_of(std::string_view text, const definition& in, const node& node) {
  const auto tokens = tokens_of(in, node);
  const size_t start = place_of(in, tokens.front());
  return text.substr(start, end_of(text, in, tokens.back()) - start);
}

std::string_view name_of(std::string_view text, const definition& in, const node& node) {
  const auto tokens = tokens_of(in, node);
  const bool is_class =
      node.meant == node_kind::INTERFACE || node.meant == node_kind::IMPLEMENTATION;
  const size_t place = node.meant == node_kind::ATTRIBUTE ? 0 : is_class ? 2 : 1;
  if (node.meant == node_kind::BROKEN || tokens.size() <= place) return {};
  if (place > 0 && tokens[place].kind() != DPARSE_TOKEN_WORD) return {};
  return text_of(text, in, tokens[place]);
}

uint32_t behind(const definition& in, uint32_t node) {
  const auto nodes = nodes_of(in);
  const uint32_t end = nodes[node].first + nodes[node].count;
  const auto inside = nodes.subspan(node + 1);
  if (inside.empty() || inside.front().first >= end) return node + 1;
  const auto found = std::partition_point(inside.begin(), inside.end(),
                                          [end](const auto& each) { return each.first < end; });
  return node + 1 + static_cast<uint32_t>(found - inside.begin());
}

const definition* definition_at(const tree& tree, uint64_t byte) {
  const auto found = definition_behind(tree, byte);
  return found == tree.definitions.end() ? nullptr : &*found;
}

}  // namespace syntax
