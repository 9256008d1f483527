// One definition at a time, from any place between two of them.
#ifndef SYNTAX_PARSE_H
#define SYNTAX_PARSE_H

#include <array>
#include <optional>

#include "syntax/tree.h"

namespace syntax {

// A text on its way into a tree.
struct parsing {
  std::string_view text;
  size_t base;                  // where the definition begins: tokens count from here
  size_t at;                    // where the next token is looked for
  size_t next = 0;              // the token to read
  size_t seen = 0;              // tokens looked at
  std::vector<token> tokens{};  // of the definition, then those looked at ahead
  std::vector<node> nodes{};
  std::vector<uint32_t> open{};  // nodes whose closing brace is yet to come
  size_t unclosed = 0;           // nodes that ended without one
  // Reads a class again in which a closing brace is missing: how its lines are indented tells
  // where.
  bool goes_by_layout = false;
  std::vector<size_t> columns{};                       // of `open`, then: see syntax/layout.h
  std::array<std::optional<structure>, 256> lately{};  // of definitions, by a hash of their tokens
};

// Reads the nodes of the next definition (syntax/parse.cpp); false where there is none.
bool parse_nodes(parsing& in);

// Appends the next definition (syntax/definition.cpp); false where there is none. What comes
// depends on nothing but the text from `base` on.
bool parse_definition(parsing& in, std::vector<definition>& definitions);

}  // namespace syntax

#endif
