// The definitions of all sources by name, and which fields classes use.
//
// An index borrows from the sources, which must stay as they are. Names compare without regard to
// ASCII case.
#ifndef LINT_INDEX_H
#define LINT_INDEX_H

#include <span>
#include <string_view>
#include <vector>

#include "lint/finding.h"

namespace lint {

// A node of a tree: sources[source].nodes_of(sources[source].tree.definitions[definition])[node].
struct node_place {
  uint32_t source;
  uint32_t definition;
  uint32_t node;
};

struct by_view {
  using key = std::string_view;
  static uint32_t hash(key name);
  static bool equal(key a, key b);
};

// A field definition, interface or implementation whose name is known, broken or not.
struct defined {
  static constexpr uint32_t NONE = UINT32_MAX;

  node_place where;
  uint32_t name_start;  // in the source's text
  uint32_t name_length;
  uint32_t next = NONE;    // the next one of the same kind and name, in the order of reading
  syntax::node_kind kind;  // FIELD, INTERFACE or IMPLEMENTATION
  bool is_used = false;    // of a field: an entry of an interface has its name
};

// The first definition of each name, by hash and then one behind the other; at most two thirds of
// the slots are used. There are hundreds of thousands: a dd_index would keep the names once more.
struct name_slot {
  uint32_t hash = 0;
  uint32_t first = defined::NONE;  // among all definitions
};

struct index {
  std::span<const source> sources{};
  std::vector<defined> definitions{};   // in the order of reading
  std::vector<name_slot> by_name[3]{};  // for each kind; as many as a power of two
};

index index_of(std::span<const source> sources);

// The first definition of that kind and name, or null.
const defined* find(const index& in, syntax::node_kind kind, std::string_view name);

// The definition and the node that a place names, and the text that it is read from; the text of a
// part.
inline const syntax::definition& definition_of(const index& in, const node_place& at) {
  return in.sources[at.source].tree.definitions[at.definition];
}
inline const syntax::node& node_of(const index& in, const node_place& at) {
  return nodes_of(definition_of(in, at))[at.node];
}
// The token that an attribute begins with, as in dparse/tokens.h.
inline int keyword_of(const index& in, const node_place& attribute) {
  return tokens_of(definition_of(in, attribute))[node_of(in, attribute).first].kind();
}
inline std::string_view text_of(const index& in, const node_place& at) {
  return in.sources[at.source].tree.text;
}
inline std::string_view text_of(const index& in, const span& where) {
  return std::string_view(in.sources[where.source].tree.text).substr(where.start, where.length);
}

// The name of a definition or entry, the keyword of an attribute; empty where none is known.
std::string_view name_of(const index& in, const node_place& at);
inline std::string_view name_of(const index& in, const defined& one) {
  return text_of(in, span{one.where.source, one.name_start, one.name_length});
}

// Calls with what stands right inside a node (entries, attributes, broken ones), in order.
template <class Call>
void each_member(const index& in, const node_place& around, Call call) {
  const syntax::definition& definition = definition_of(in, around);
  const uint32_t end = syntax::behind(definition, around.node);
  node_place at = around;
  for (++at.node; at.node < end; at.node = syntax::behind(definition, at.node)) call(at);
}
// The last member that is an attribute of that keyword: its value counts. False where there is
// none.
bool find_attribute(const index& in, const node_place& around, std::string_view keyword,
                    node_place& found);

// --- Parts of a node, where they stand
span name_span(const index& in, const node_place& at);   // of a definition or entry, or keyword
span type_span(const index& in, const node_place& at);   // the first token of a definition or entry
span value_span(const index& in, const node_place& at);  // of an attribute: between "=" and ";"
bool holds_value(int kind);  // whether such a token can be a value: a word, keyword or string
// The value of the last such attribute as it is written; empty where there is none, or where it is
// broken and something else stands there.
std::string_view attribute_text(const index& in, const node_place& around,
                                std::string_view keyword);
// The line of a byte, however long the line is.
uint64_t line_at(const syntax::tree& tree, uint64_t byte);
// "NAME:LINE", as sentences refer to other places.
std::string place_text(const index& in, const span& where);

}  // namespace lint

#endif
