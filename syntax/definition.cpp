// One definition: its tokens and nodes, cut out of what was looked at.
#include <algorithm>

#include "syntax/layout.h"
#include "syntax/parse.h"
#include "syntax/scan.h"

namespace syntax {

template <class Record>
static std::unique_ptr<Record[]> copy_of(const std::vector<Record>& records, size_t count) {
  auto copy = std::make_unique_for_overwrite<Record[]>(count);
  std::copy_n(records.begin(), count, copy.get());
  return copy;
}

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
  definitions.push_back({in.base, static_cast<uint32_t>(end - in.base),
                         static_cast<uint32_t>(seen - end), static_cast<uint32_t>(in.next),
                         static_cast<uint32_t>(in.nodes.size()), copy_of(in.tokens, in.next),
                         copy_of(in.nodes, in.nodes.size())});
  forget_ahead(in);
  begin_next(in, end);
  return true;
}

}  // namespace syntax
