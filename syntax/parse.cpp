// The grammar, for texts that may break it. Members and definitions are told by the tokens at their
// head, so that a broken one ends where the next begins. The nodes that are open are kept in a
// vector, not on the stack: input decides how deep they nest.
#include "syntax/parse.h"

#include <algorithm>

#include "dd/types.h"
#include "dparse/read/definition.h"
#include "dparse/read/reader.h"
#include "syntax/layout.h"
#include "syntax/scan.h"

namespace syntax {

// --- Tokens ahead --------------------------------------------------------------------------------

static void scan_one(parsing& in) {
  const scanned found = scan(in.text, in.at);
  const size_t length = std::min<size_t>(found.end - found.start, token::LONG);
  in.tokens.push_back({static_cast<uint32_t>(found.start - in.base),
                       static_cast<uint32_t>(found.kind) << 24 | static_cast<uint32_t>(length)});
  in.at = found.end;
}

static void look_at(parsing& in, size_t index) {
  while (in.tokens.size() <= index) scan_one(in);
  in.seen = index + 1;
}

// The kind of the token so many tokens ahead.
static inline int kind(parsing& in, size_t distance = 0) {
  const size_t index = in.next + distance;
  if (index >= in.seen) look_at(in, index);
  return in.tokens[index].kind();
}

static bool take(parsing& in, int wanted) {
  if (kind(in) != wanted) return false;
  ++in.next;
  return true;
}

static bool is_type(int kind) {
  return dparse::type_code_of(kind) != TAV_FLDT_UNUSED || kind == DPARSE_KEY_UINT;
}

// Words and keywords.
static bool is_name(int kind) {
  switch (kind) {
    case DPARSE_TOKEN_EMPTY:
    case DPARSE_TOKEN_EOF:
    case DPARSE_TOKEN_BAD_STRING:
    case DPARSE_TOKEN_STRING:
    case DPARSE_KEY_OPEN:
    case DPARSE_KEY_CLOSE:
    case DPARSE_KEY_EQUALS:
    case DPARSE_KEY_SEMICOLON:
      return false;
    default:
      return true;
  }
}

// --- Where something begins ----------------------------------------------------------------------

static bool begins_class(parsing& in) {
  return kind(in) == DPARSE_KEY_STORABLE && kind(in, 1) == DPARSE_KEY_CLASS;
}

// type name "{"
static bool begins_field(parsing& in) {
  return is_type(kind(in)) && kind(in, 1) == DPARSE_TOKEN_WORD && kind(in, 2) == DPARSE_KEY_OPEN;
}

// Whether a definition begins inside another, whose closing brace is missing then. In a class a
// field is an entry, unless it stands where only definitions do: with a number, and not indented.
static bool begins_definition(parsing& in) {
  if (begins_class(in)) return true;
  if (!begins_field(in)) return false;
  const bool is_in_field = !in.open.empty() && in.nodes[in.open.front()].meant == node_kind::FIELD;
  return is_in_field || (kind(in, 3) == DPARSE_KEY_ID && column_of(in, in.tokens[in.next]) == 0);
}

static bool begins_member(parsing& in) {
  return (is_name(kind(in)) && kind(in, 1) == DPARSE_KEY_EQUALS) || begins_field(in);
}

// What no member goes beyond, whole or broken.
static bool ends_member(parsing& in) {
  const int next = kind(in);
  return next == DPARSE_KEY_CLOSE || next == DPARSE_TOKEN_EOF || begins_member(in) ||
         begins_class(in);
}

// --- Nodes ---------------------------------------------------------------------------------------

static uint32_t begin_node(parsing& in, node_kind meant) {
  in.nodes.push_back({static_cast<uint32_t>(in.next), 0, meant, meant});
  return static_cast<uint32_t>(in.nodes.size() - 1);
}

static void end_node(parsing& in, uint32_t index, bool is_whole) {
  node& ended = in.nodes[index];
  ended.count = static_cast<uint32_t>(in.next) - ended.first;
  if (!is_whole) ended.kind = node_kind::BROKEN;
}

// Takes "{" and everything up to the "}" that closes it.
static void skip_braces(parsing& in) {
  size_t depth = 0;
  do {
    const int next = kind(in);
    if (next == DPARSE_TOKEN_EOF || begins_definition(in)) return;
    if (next == DPARSE_KEY_OPEN) ++depth;
    if (next == DPARSE_KEY_CLOSE) --depth;
    ++in.next;
  } while (depth > 0);
}

// Takes what is left of a broken member: up to its ";" (and such as follow), the end of its braces,
// or whatever ends it.
static void skip_member(parsing& in) {
  while (!ends_member(in)) {
    if (kind(in) == DPARSE_KEY_OPEN) return skip_braces(in);
    if (take(in, DPARSE_KEY_SEMICOLON)) break;
    ++in.next;
  }
  while (take(in, DPARSE_KEY_SEMICOLON)) continue;
}

// attribute := name "=" ( string { string } | name ) ";"
// Strings and words together are mostly a text that holds a bare quote: its blanks count.
static void parse_attribute(parsing& in) {
  const uint32_t self = begin_node(in, node_kind::ATTRIBUTE);
  in.next += 2;
  const size_t first = in.next;
  if (!ends_member(in) && is_name(kind(in))) {
    ++in.next;
  } else {
    while (take(in, DPARSE_TOKEN_STRING)) continue;
  }
  const bool is_whole = in.next > first && take(in, DPARSE_KEY_SEMICOLON);
  if (!is_whole) skip_member(in);
  end_node(in, self, is_whole);
}

static void parse_broken_member(parsing& in) {
  const uint32_t self = begin_node(in, begins_field(in)    ? node_kind::ENTRY
                                       : is_name(kind(in)) ? node_kind::ATTRIBUTE
                                                           : node_kind::BROKEN);
  if (kind(in) == DPARSE_KEY_OPEN) {
    skip_braces(in);
  } else {
    ++in.next;
    skip_member(in);
  }
  end_node(in, self, false);
}

// Whether what follows a head is its block in spite of a missing "{". The "}" that follows that of
// an entry belongs to what is around it, and so does another entry.
static bool begins_block_without_brace(parsing& in, node_kind meant) {
  if (kind(in) == DPARSE_KEY_CLOSE) return in.open.empty();
  if (!begins_field(in)) return begins_member(in);
  const bool is_class = meant == node_kind::INTERFACE || meant == node_kind::IMPLEMENTATION;
  return is_class && !begins_definition(in);
}

// Further braces are one too many each: what follows is the block all the same.
static void open_block(parsing& in, uint32_t self) {
  const uint32_t head = in.nodes[self].first;
  if (in.goes_by_layout) {
    kind(in);
    in.columns.push_back(column_of_block(in, in.tokens[head], in.tokens[in.next]));
  }
  in.open.push_back(self);
  while (kind(in) == DPARSE_KEY_OPEN) {
    const uint32_t brace = begin_node(in, node_kind::BROKEN);
    ++in.next;
    end_node(in, brace, false);
  }
}

static void end_block(parsing& in, bool is_closed) {
  end_node(in, in.open.back(), is_closed);
  in.open.pop_back();
  if (in.goes_by_layout) in.columns.pop_back();
  if (!is_closed) ++in.unclosed;
}

// Whether the word that says what an implementation is for shows that the head of a class, in which
// something is wrong, is that of one.
static bool names_implementation(const parsing& in) {
  const token& word = in.tokens[in.next];
  const size_t length = word.kind_and_length & token::LONG;
  return dparse::names_implementation(in.text.substr(in.base + word.start, length));
}

// Takes the tokens of a head and its "{", and opens the node where a block follows. The node of
// another is closed, broken.
static void parse_head(parsing& in, uint32_t self, bool is_whole) {
  while (!ends_member(in) && kind(in) != DPARSE_KEY_OPEN && kind(in) != DPARSE_KEY_SEMICOLON) {
    is_whole = false;
    const bool is_class = in.nodes[self].meant == node_kind::INTERFACE;
    if (is_class && names_implementation(in)) in.nodes[self].meant = node_kind::IMPLEMENTATION;
    ++in.next;
  }
  const bool has_brace = take(in, DPARSE_KEY_OPEN);
  if (has_brace || begins_block_without_brace(in, in.nodes[self].meant)) {
    if (!has_brace || !is_whole) in.nodes[self].kind = node_kind::BROKEN;
    return open_block(in, self);
  }
  while (take(in, DPARSE_KEY_SEMICOLON)) continue;
  end_node(in, self, false);
}

// head := type name "{"
static void parse_field_head(parsing& in, node_kind meant) {
  const uint32_t self = begin_node(in, meant);
  ++in.next;
  const bool is_whole = take(in, DPARSE_TOKEN_WORD);
  parse_head(in, self, is_whole);
}

// head := STORABLE CLASS name [ IMPLEMENTATION word ] "{"
static void parse_class_head(parsing& in) {
  const uint32_t self = begin_node(in, node_kind::INTERFACE);
  ++in.next;
  const bool has_class = take(in, DPARSE_KEY_CLASS);
  bool is_whole = take(in, DPARSE_TOKEN_WORD) && has_class;
  if (take(in, DPARSE_KEY_IMPLEMENTATION)) {
    in.nodes[self].kind = in.nodes[self].meant = node_kind::IMPLEMENTATION;
    is_whole = take(in, DPARSE_TOKEN_WORD) && is_whole;
  }
  parse_head(in, self, is_whole);
}

// A type's keyword that a name or a brace follows, or another keyword in the place of the name.
static bool begins_field_of_sorts(parsing& in) {
  if (!is_type(kind(in))) return false;
  const int next = kind(in, 1);
  return next == DPARSE_TOKEN_WORD || next == DPARSE_KEY_OPEN ||
         (is_name(next) && kind(in, 2) == DPARSE_KEY_OPEN);
}

static void parse_member(parsing& in) {
  const bool is_too_deep = in.open.size() > dparse::MAX_DEPTH;
  if (begins_field_of_sorts(in) && !is_too_deep) return parse_field_head(in, node_kind::ENTRY);
  const bool is_attribute = is_name(kind(in)) && kind(in, 1) == DPARSE_KEY_EQUALS;
  is_attribute ? parse_attribute(in) : parse_broken_member(in);
}

static bool is_ended_by_layout(parsing& in) {
  if (!in.goes_by_layout) return false;
  const bool is_class = in.open.size() == 1;
  const bool shows_it =
      kind(in) == DPARSE_KEY_CLOSE ||
      (is_class ? begins_field_of_sorts(in) : begins_member(in) || begins_field_of_sorts(in));
  return shows_it && ends_block(in, in.columns.back(), in.tokens[in.next]);
}

// block := { member } "}"; the heads of entries open the blocks inside.
static void parse_blocks(parsing& in) {
  while (!in.open.empty()) {
    const bool is_ended = is_ended_by_layout(in);
    const bool is_closed = !is_ended && kind(in) == DPARSE_KEY_CLOSE;
    if (!is_ended && !is_closed && kind(in) != DPARSE_TOKEN_EOF && !begins_definition(in)) {
      parse_member(in);
      continue;
    }
    if (is_closed) ++in.next;
    end_block(in, is_closed);
  }
}

// Takes what begins no definition, up to what does, or to the end of its braces.
static void parse_stray(parsing& in) {
  const uint32_t self = begin_node(in, node_kind::BROKEN);
  while (kind(in) != DPARSE_TOKEN_EOF && kind(in) != DPARSE_KEY_STORABLE &&
         !begins_field_of_sorts(in)) {
    if (kind(in) == DPARSE_KEY_OPEN) {
      skip_braces(in);
      break;
    }
    ++in.next;
  }
  end_node(in, self, false);
}

// definition := field | class
bool parse_nodes(parsing& in) {
  if (kind(in) == DPARSE_TOKEN_EOF) return false;
  if (kind(in) == DPARSE_KEY_STORABLE) {
    parse_class_head(in);
  } else if (begins_field_of_sorts(in)) {
    parse_field_head(in, node_kind::FIELD);
  } else {
    parse_stray(in);
  }
  parse_blocks(in);
  return true;
}

}  // namespace syntax
