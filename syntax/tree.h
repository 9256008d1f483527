// Definition files as trees: what stands where, broken or not.
//
// The reader (dparse/read/) says whether a file is right and stops where it is not. A tree holds
// the whole of any text: its tokens, in the shape of definitions, entries and attributes, and
// between them the blanks and comments. It knows the shape only; whether an attribute may stand
// where it does, and have that value, is the reader's to say.
//
//   syntax::tree tree = syntax::read(text);
//   for (const syntax::definition& each : tree.definitions)
//     std::cout << syntax::name_of(tree.text, each, each.nodes[0]);
//
// A tree owns its text and everything else in it, and what the calls give borrows from it, until it
// is edited or destroyed. Offsets and lengths are in bytes.
#ifndef SYNTAX_TREE_H
#define SYNTAX_TREE_H

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "dparse/tokens.h"

namespace syntax {

inline constexpr uint64_t MOST_BYTES = 0xffffff00;  // of a text

// A token. Blanks and comments are not kept: they are what lies between tokens
// (syntax/scan.h takes it apart).
struct token {
  static constexpr uint32_t LONG = 0xffffff;

  uint32_t start;            // from where its definition begins
  uint32_t kind_and_length;  // the length from LONG upwards counts as LONG: ask text_of

  int kind() const { return static_cast<int>(kind_and_length >> 24); }  // as in dparse/tokens.h
};

enum class node_kind : uint8_t {
  FIELD,           // type name "{" ... "}", by itself
  INTERFACE,       // STORABLE CLASS name "{" ... "}"
  IMPLEMENTATION,  // STORABLE CLASS name IMPLEMENTATION word "{" ... "}"
  ENTRY,           // a field inside a class or entry
  ATTRIBUTE,       // keyword "=" word or strings ";"
  BROKEN           // anything else, up to the next member, closing brace or definition, and
                   // entries that are nested deeper than the reader takes
};

// A construct. The nodes of a definition stand in the order of their first tokens, each before
// those inside it: its subtree is itself and all nodes after it whose first token is one of its
// own.
struct node {
  uint32_t first;  // token of the definition
  uint32_t count;  // of tokens, at least 1
  node_kind kind;
  node_kind meant;  // of a broken one: what it was to be; BROKEN where nobody can tell
};

// What stands at the top of a file: a field definition, a class, or something broken (nodes[0]),
// with the blanks and comments before it.
struct definition {
  uint64_t start;   // in the text
  uint32_t length;  // up to the end of its last token
  uint32_t ahead;   // so many bytes behind that told where it ends; most need none
  uint32_t token_count;
  uint32_t node_count;
  std::unique_ptr<token[]> tokens;
  std::unique_ptr<node[]> nodes;
};

// So far apart are the places of which a tree knows the line.
inline constexpr size_t LINE_BLOCK = 1 << 12;

struct tree {
  std::string text;
  // They follow on each other from the text's beginning (a byte order mark counts as a blank).
  // Behind the last one there are only blanks and comments.
  std::vector<definition> definitions;
  std::vector<uint32_t> lines;  // how many end before each block of LINE_BLOCK bytes
};

// Reads a text of at most MOST_BYTES; longer ones throw std::length_error.
tree read(std::string text);

// A change of a text: `removed` bytes from `start` on make room for others.
struct edit {
  uint64_t start;
  uint64_t removed;
  std::string_view inserted;  // no part of the tree
};

// Makes the change, and the tree that of the new text. Gives how many definitions were read for
// it: those that the change touches, and those that ended where they did because of what it
// touches. What of the edit lies behind the text is ignored. Without memory for it (std::bad_alloc)
// nothing can be done with the tree but to read another into it.
size_t apply(tree& changed, const edit& change);

// --- Tokens and nodes ----------------------------------------------------------------------------
inline std::span<const token> tokens_of(const definition& in) {
  return {in.tokens.get(), in.token_count};
}
inline std::span<const node> nodes_of(const definition& in) {
  return {in.nodes.get(), in.node_count};
}
inline std::span<const token> tokens_of(const definition& in, const node& node) {
  return tokens_of(in).subspan(node.first, node.count);
}

// These three take the text that was read (tree::text), from which what they give borrows.
// The token as it is written, a string with its quotes.
std::string_view text_of(std::string_view text, const definition& in, const token& token);
// From the first to the last token, with what stands between them.
std::string_view text_of(std::string_view text, const definition& in, const node& node);
// The name of a definition or entry, the keyword of an attribute; empty where none is known. A
// broken definition that has a name defines it all the same.
std::string_view name_of(std::string_view text, const definition& in, const node& node);
// Where the token stands in the text.
inline uint64_t place_of(const definition& in, const token& token) {
  return in.start + token.start;
}
// The index of the first node that is not in the subtree; node_count where there is none.
uint32_t behind(const definition& in, uint32_t node);
// The definition that covers the byte, or null: only blanks and comments follow.
const definition* definition_at(const tree& tree, uint64_t byte);

// --- Places --------------------------------------------------------------------------------------
struct place {
  uint64_t line;    // 1 for the first
  uint64_t column;  // bytes before it on its line
  uint64_t byte;    // in the text
};
place place_at(const tree& tree, uint64_t byte);
// Moves a place, {1, 0, 0} at first, on to a byte behind it: for who has no tree, or many places.
void move_to(place& place, std::string_view text, uint64_t byte);

// The same column in other units. Each byte that is not part of a character counts as one.
struct columns {
  uint64_t characters = 0;  // code points
  uint64_t utf16 = 0;       // units, 2 for a code point from U+10000 on
};
columns columns_at(std::string_view text, const place& place);

}  // namespace syntax

#endif
