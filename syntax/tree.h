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
// is edited or destroyed. Its definitions belong to one thread at a time: those that are made alike
// share their structure. Offsets and lengths are in bytes.
#ifndef SYNTAX_TREE_H
#define SYNTAX_TREE_H

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "syntax/structure.h"

namespace syntax {

inline constexpr uint64_t MOST_BYTES = 0xffffff00;  // of a text

// What stands at the top of a file: a field definition, a class, or something broken (nodes[0]),
// with the blanks and comments before it.
struct definition {
  uint32_t start;   // in the text
  uint32_t length;  // up to the end of its last token
  uint32_t ahead;   // so many bytes behind that told where it ends; most need none
  syntax::structure structure;
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
  return in.structure.tokens();
}
inline std::span<const node> nodes_of(const definition& in) {
  return in.structure.nodes();
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
  return uint64_t{in.start} + token.start;
}
// The index of the first node that is not in the subtree; their number where there is none.
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
