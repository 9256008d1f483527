// One definition: its tokens and nodes, cut out of what was looked at.
#include <algorithm>

#include "dd/hash.h"
#include "syntax/layout.h"
#include "syntax/parse.h"
#include "syntax/scan.h"

namespace syntax {

// --- Structures ----------------------------------------------------------------------------------

static size_t hash_of(std::span<const token> tokens) {
  uint64_t hash = tokens.size();
  for (const token& each : tokens)
    hash =
        dd_multiply(hash ^ each.start ^ uint64_t{each.kind_and_length} << 32, DD_HASH_KEY.factor);
  return hash;
}

// That of a definition that was read lately where it is the same, else one of its own.
static structure structure_of(parsing& in) {
  constexpr size_t LONG = 64;  // such definitions are hardly ever made alike
  const std::span<const token> tokens(in.tokens.data(), in.next);
  if (tokens.size() > LONG) return {tokens, in.nodes};
  std::optional<structure>& known = in.lately[hash_of(tokens) % std::size(in.lately)];
  if (!known || !std::ranges::equal(known->tokens(), tokens) ||
      !std::ranges::equal(known->nodes(), in.nodes))
    known.emplace(tokens, in.nodes);
  return *known;
}

// --- Definitions ---------------------------------------------------------------------------------

static size_t end_of(const parsing& in, const token& last) {
  const size_t length = last.kind_and_length & token::LONG;
  const size_t start = in.base + last.start;
  return length < token::LONG ? start + length : scan(in.text, start).end;
}

// How much of the text decided. Where a token ends may show in the byte behind it.
static size_t end_of_seen(const parsing& in) {
  const token& last = in.tokens[in.seen - 1];
  const bool is_alone = last.kind() == DPARSE_KEY_CLOSE || last.kind() == DPARSE_KEY_SEMICOLON;
  return end_of(in, last) + (is_alone ? 0 : 1);
}

static void start_again(parsing& in) {
  in.next = in.unclosed = 0;
  in.nodes.clear();
}

// Makes what was looked at ahead the beginning of the next definition.
static void begin_next(parsing& in, size_t end) {
  in.tokens.erase(in.tokens.begin(), in.tokens.begin() + static_cast<ptrdiff_t>(in.next));
  for (token& each : in.tokens) each.start -= static_cast<uint32_t>(end - in.base);
  in.base = end;
  in.seen = 0;
  start_again(in);
}

// A class that lacks a closing brace goes on to its end, or that of the text: perhaps its lines
// tell more. What they make worse stays as it was.
static void mend_by_layout(parsing& in) {
  const node_kind meant = in.nodes[0].meant;
  const bool is_class = meant == node_kind::INTERFACE || meant == node_kind::IMPLEMENTATION;
  if (!is_class || in.unclosed == 0 || column_of(in, in.tokens[0]) == NO_COLUMN) return;
  const size_t unclosed = in.unclosed;
  const size_t next = in.next;
  std::vector<node> nodes = std::move(in.nodes);
  start_again(in);
  in.goes_by_layout = true;
  parse_nodes(in);
  in.goes_by_layout = false;
  if (in.unclosed <= unclosed) return;
  in.nodes = std::move(nodes);
  in.next = next;
}

// What a class looked at that ended sooner is read again: many would move it each time.
static void forget_ahead(parsing& in) {
  constexpr size_t MOST_AHEAD = 16;
  if (in.tokens.size() <= in.next + MOST_AHEAD) return;
  in.tokens.resize(in.next + MOST_AHEAD);
  in.at = end_of(in, in.tokens.back());
}

bool parse_definition(parsing& in, std::vector<definition>& definitions) {
  if (!parse_nodes(in)) return false;
  mend_by_layout(in);
  in.seen = std::max(in.seen, in.next);
  const size_t end = end_of(in, in.tokens[in.next - 1]);
  const size_t seen = end_of_seen(in);
  definitions.push_back({static_cast<uint32_t>(in.base), static_cast<uint32_t>(end - in.base),
                         static_cast<uint32_t>(seen - end), structure_of(in)});
  forget_ahead(in);
  begin_next(in, end);
  return true;
}

}  // namespace syntax
