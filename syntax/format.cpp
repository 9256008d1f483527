#include "syntax/format.h"

#include <algorithm>
#include <stdexcept>

#include "syntax/parse.h"
#include "syntax/scan.h"

namespace syntax {

namespace {

// Where a token stands in what is written.
struct position {
  bool begins_line;  // or goes on with one
  size_t depth;      // of its line
  size_t gap_depth;  // of the comments before it
};

struct layout {
  std::string_view from;
  std::string_view line_end;
  formatted to{};
  size_t at = 0;              // what is laid out up to here
  bool is_line_open = false;  // something stands on the last line
  bool must_break = false;    // nothing more can stand there: it ends with a comment
  bool stays = false;         // what follows, up to the next token, stays as it is
};

}  // namespace

static std::string_view line_end_of_most(std::string_view text) {
  size_t all = 0, with_return = 0;
  for (size_t at = text.find('\n'); at != text.npos; at = text.find('\n', at + 1)) {
    ++all;
    if (at > 0 && text[at - 1] == '\r') ++with_return;
  }
  return with_return * 2 > all ? "\r\n" : "\n";
}

// --- Lines ---------------------------------------------------------------------------------------

static bool is_banner(std::string_view comment) {
  return comment.size() > 1 && comment.find_first_not_of('=', 1) == comment.npos;
}

static void end_line(layout& to) {
  to.to.text += to.line_end;
  to.is_line_open = to.must_break = false;
}

// Ends the line, if there is one, and lets as many blank lines follow as may stay of those that the
// line ends before it made.
static void break_line(layout& to, size_t line_ends, size_t most_blank) {
  const size_t blank = line_ends - (to.is_line_open && line_ends > 0 ? 1 : 0);
  if (to.is_line_open) end_line(to);
  for (size_t i = std::min(blank, most_blank); i > 0; --i) end_line(to);
}

static void put_indented(layout& to, size_t depth, std::string_view text) {
  to.to.text.append(depth, '\t');
  to.to.text += text;
  to.is_line_open = true;
}

static void put_comment(layout& to, std::string_view comment, size_t line_ends, size_t depth) {
  if (line_ends == 0 && to.is_line_open) {
    to.to.text += ' ';
    put_indented(to, 0, comment);
  } else {
    break_line(to, line_ends, is_banner(comment) ? 2 : 1);
    put_indented(to, depth, comment);
  }
  to.must_break = true;
}

// Lays out the comments up to there; gives how many line ends follow the last.
static size_t put_gap(layout& to, size_t end, size_t depth) {
  size_t line_ends = 0;
  while (to.at < end) {
    const gap_piece piece = next_in_gap(to.from, to.at);
    const std::string_view text = to.from.substr(to.at, piece.end - to.at);
    if (piece.kind == gap_kind::LINE_END) ++line_ends;
    if (piece.kind == gap_kind::MARK) to.to.text += text;
    if (piece.kind == gap_kind::COMMENT) {
      put_comment(to, text, line_ends, depth);
      line_ends = 0;
    }
    to.at = piece.end;
  }
  return line_ends;
}

// --- Tokens --------------------------------------------------------------------------------------

static void put_as_it_is(layout& to, size_t end) {
  to.to.text += to.from.substr(to.at, end - to.at);
  to.at = end;
  to.is_line_open = true;
  to.must_break = false;
}

static void put_token(layout& to, const definition& in, const token& token,
                      const position& position) {
  const std::string_view text = text_of(to.from, in, token);
  const size_t start = place_of(in, token);
  if (to.stays) {
    put_as_it_is(to, start + text.size());
    to.stays = false;
    return;
  }
  const size_t line_ends = put_gap(to, start, position.gap_depth);
  const bool is_string = token.kind() == DPARSE_TOKEN_STRING;
  if (position.begins_line || to.must_break || (is_string && line_ends > 0)) {
    break_line(to, line_ends, 1);
    put_indented(to, position.depth, text);
  } else {
    if (token.kind() != DPARSE_KEY_SEMICOLON) to.to.text += ' ';
    put_indented(to, 0, text);
  }
  to.at = start + text.size();
}

static void put_broken(layout& to, const definition& in, const node& node) {
  const std::string_view text = text_of(to.from, in, node);
  const size_t start = place_of(in, tokens_of(in)[node.first]);
  put_as_it_is(to, start + text.size());
  to.to.broken.push_back({start, node.meant});
  to.stays = true;
}

// The nodes around the token, the innermost last. Nodes that are no attributes end with "}".
static void put_definition(layout& to, const definition& in) {
  std::vector<uint32_t> open;  // the first token behind each node
  const auto tokens = tokens_of(in);
  const auto nodes = nodes_of(in);
  uint32_t next_node = 0;
  for (uint32_t i = 0; i < tokens.size(); ++i) {
    while (!open.empty() && open.back() == i) open.pop_back();
    const bool begins_node = next_node < nodes.size() && nodes[next_node].first == i;
    if (begins_node) {
      const node& node = nodes[next_node];
      if (node.kind == node_kind::BROKEN) {
        put_broken(to, in, node);
        next_node = behind(in, next_node);
        i += node.count - 1;
        continue;
      }
      open.push_back(i + node.count);
      ++next_node;
    }
    const bool closes = tokens[i].kind() == DPARSE_KEY_CLOSE;
    const bool begins_line = begins_node || closes;
    const size_t depth = open.size() - (begins_line ? 1 : 0);
    put_token(to, in, tokens[i], {begins_line, depth, depth + (closes ? 1 : 0)});
  }
}

static formatted end_of_text(layout& to) {
  if (to.stays) {
    put_as_it_is(to, to.from.size());
  } else {
    break_line(to, put_gap(to, to.from.size(), 0), 1);
  }
  return std::move(to.to);
}

static layout empty_layout(std::string_view text, std::string_view line_end) {
  layout to{text, line_end};
  to.to.text.reserve(text.size() * 2);  // what is not used is only an address
  return to;
}

// Without blank lines that are taken away, other line ends may be those of most lines. With these
// the text stays as it is when it is formatted again.
template <class LayOut>
static formatted with_line_ends_of_most(std::string_view text, LayOut lay_out) {
  const std::string_view before = line_end_of_most(text);
  formatted result = lay_out(empty_layout(text, before));
  const std::string_view after = line_end_of_most(result.text);
  return after == before ? std::move(result) : lay_out(empty_layout(text, after));
}

formatted format(const tree& tree) {
  return with_line_ends_of_most(tree.text, [&](layout to) {
    for (const definition& each : tree.definitions) put_definition(to, each);
    return end_of_text(to);
  });
}

formatted format(std::string_view text) {
  return with_line_ends_of_most(text, [&](layout to) {
    parsing in{text, 0, 0};
    for (std::vector<definition> next; parse_definition(in, next); next.clear())
      put_definition(to, next.front());
    return end_of_text(to);
  });
}

// --- Words ---------------------------------------------------------------------------------------

// The next token or comment; tokens of no length at the end.
static scanned next_word(std::string_view text, size_t at) {
  constexpr int COMMENT = -1;
  for (;;) {
    const gap_piece piece = next_in_gap(text, at);
    if (piece.kind == gap_kind::NONE) return scan(text, at);
    if (piece.kind == gap_kind::COMMENT) return {at, piece.end, COMMENT};
    at = piece.end;
  }
}

bool same_words(std::string_view text, std::string_view other) {
  if (text == other) return true;
  if (mark_size(text) != mark_size(other)) return false;
  scanned a{0, 0, DPARSE_TOKEN_EMPTY};
  scanned b = a;
  do {
    a = next_word(text, a.end);
    b = next_word(other, b.end);
    if (a.kind != b.kind ||
        text.substr(a.start, a.end - a.start) != other.substr(b.start, b.end - b.start))
      return false;
  } while (a.kind != DPARSE_TOKEN_EOF);
  return true;
}

}  // namespace syntax
