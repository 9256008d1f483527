// Tokens and nodes: what a definition is made of, wherever it stands.
#ifndef SYNTAX_STRUCTURE_H
#define SYNTAX_STRUCTURE_H

#include <cstdint>
#include <span>
#include <utility>

#include "dparse/tokens.h"

namespace syntax {

// A token. Blanks and comments are not kept: they are what lies between tokens
// (syntax/scan.h takes it apart).
struct token {
  static constexpr uint32_t LONG = 0xffffff;

  uint32_t start;            // from where its definition begins
  uint32_t kind_and_length;  // the length from LONG upwards counts as LONG: ask text_of

  int kind() const { return static_cast<int>(kind_and_length >> 24); }  // as in dparse/tokens.h
  bool operator==(const token&) const = default;
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

  bool operator==(const node&) const = default;
};

// The tokens and nodes of a definition, in one block of memory. Copies share the block and take a
// pointer each: of a million definitions whose tokens have the same kinds and stand at the same
// distances, as those that a program writes do, only some keep one. Copies belong to one thread.
class structure {
 public:
  structure(std::span<const token> tokens, std::span<const node> nodes);  // copied
  structure(const structure& other) noexcept : block_(other.block_) { ++block_->owners; }
  structure(structure&& other) noexcept : block_(std::exchange(other.block_, nullptr)) {}
  structure& operator=(structure other) noexcept {
    std::swap(block_, other.block_);
    return *this;
  }
  ~structure() {
    if (block_ != nullptr && --block_->owners == 0) free(block_);
  }

  std::span<const token> tokens() const { return {first_token(), block_->token_count}; }
  std::span<const node> nodes() const { return {first_node(), block_->node_count}; }

 private:
  // The tokens stand behind it, and the nodes behind them.
  struct block {
    uint32_t owners;
    uint32_t token_count;
    uint32_t node_count;
  };

  static void free(block* unused) noexcept;
  token* first_token() const { return reinterpret_cast<token*>(block_ + 1); }
  node* first_node() const { return reinterpret_cast<node*>(first_token() + block_->token_count); }

  block* block_;  // null: moved from
};

}  // namespace syntax

#endif
