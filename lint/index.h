// The definitions of all sources by name, and which fields classes use.
//
// An index borrows from the sources, which must stay as they are. Names compare without regard to
// ASCII case.
#ifndef LINT_INDEX_H
#define LINT_INDEX_H

#include <span>
#include <string_view>
#include <vector>

#include "dd/index.h"
#include "lint/finding.h"

namespace lint {

// A node of a tree: sources[source].tree.definitions[definition].nodes[node].
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

  syntax::node_kind kind;  // FIELD, INTERFACE or IMPLEMENTATION
  std::string_view name;
  node_place where;
  uint32_t next = NONE;  // the next one of the same kind and name, in the order of reading
};

struct index {
  std::span<const source> sources{};
  std::vector<defined> definitions{};        // in the order of reading
  dd_index<by_view, uint32_t> by_name[3]{};  // the first of a name, for each kind
  dd_index<by_view, node_place> used_by{};   // a field's name: the first entry of an interface
};

index index_of(std::span<const source> sources);

// The first definition of that kind and name, or null; the next one of the same, or null.
const defined* find(const index& in, syntax::node_kind kind, std::string_view name);
const defined* next_of(const index& in, const defined& one);
// The first entry of an interface that has the field's name, or null: no class uses it.
const node_place* first_use(const index& in, std::string_view field);

// The definition and the node that a place names, and the text that it is read from.
const syntax::definition& definition_of(const index& in, const node_place& at);
const syntax::node& node_of(const index& in, const node_place& at);
std::string_view text_of(const index& in, const node_place& at);

// What stands right inside a node (entries, attributes, broken ones), in order.
std::vector<node_place> members_of(const index& in, const node_place& around);
// The member that is an entry of that name: the n-th behind the first, or the last where there are
// fewer; or the last attribute of that keyword, whose value counts. False where there is none.
bool find_entry(const index& in, const node_place& around, std::string_view name, node_place& found,
                size_t n = 0);
bool find_attribute(const index& in, const node_place& around, std::string_view keyword,
                    node_place& found);

// --- Parts of a node, where they stand
span name_span(const index& in, const node_place& at);   // of a definition or entry, or keyword
span type_span(const index& in, const node_place& at);   // the first token of a definition or entry
span value_span(const index& in, const node_place& at);  // of an attribute: between "=" and ";"
span whole_span(const index& in, const node_place& at);
// The line of a byte, however long the line is.
uint64_t line_at(const syntax::tree& tree, uint64_t byte);
// "NAME:LINE", as sentences refer to other places.
std::string place_text(const index& in, const span& where);

}  // namespace lint

#endif
