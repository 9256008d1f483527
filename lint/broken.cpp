// A member is judged in a frame: the heads of what is around it, and closing braces.
#include "lint/broken.h"

#include <algorithm>

#include "dd/types.h"
#include "lint/own_place.h"

namespace lint {

using dparse::message;
using syntax::node;
using syntax::node_kind;

namespace {

// A definition or entry whose members are being judged.
struct open_block {
  uint32_t node;
  uint32_t last_member_end = 0;  // behind its last token
  std::string_view name{};
  std::string head{};   // a sound one, up to "{"
  bool is_kept = true;  // stands in the mended text
};

struct judging {
  std::span<const source> sources;
  uint32_t source_number;
  const syntax::definition& definition;
  size_t most;
  left_out& missing;
  mended result{};
  std::vector<open_block> open{};
  std::string frame{};  // memory for texts to judge

  std::string_view text() const { return sources[source_number].tree.text; }
  const node& at(uint32_t index) const { return nodes_of(definition)[index]; }
};

// Tokens of the definition from the first to before the last.
struct token_range {
  uint32_t first;
  uint32_t end;
};

}  // namespace

static uint32_t end_of(const node& node) {
  return node.first + node.count;
}

static std::string_view slice(const judging& in, token_range range) {
  const uint64_t start = syntax::place_of(in.definition, tokens_of(in.definition)[range.first]);
  const auto& last = tokens_of(in.definition)[range.end - 1];
  const std::string_view text = syntax::text_of(in.text(), in.definition, last);
  return in.text().substr(start, syntax::place_of(in.definition, last) + text.size() - start);
}

static int kind_at(const judging& in, uint32_t token) {
  return tokens_of(in.definition)[token].kind();
}

static uint32_t children_begin(const judging& in, uint32_t index) {
  const bool has_child =
      index + 1 < nodes_of(in.definition).size() && in.at(index + 1).first < end_of(in.at(index));
  return has_child ? in.at(index + 1).first : end_of(in.at(index));
}

// --- Frames --------------------------------------------------------------------------------------

// Whether a head can be made with that name: it stands in front of each part that is judged.
static bool is_short(std::string_view name) {
  constexpr size_t LONG = 512;
  return !name.empty() && name.size() <= LONG;
}

static std::string class_head(const judging& in) {
  const node& top = in.at(0);
  const std::string_view name = syntax::name_of(in.text(), in.definition, top);
  std::string head = "STORABLE CLASS ";
  head += is_short(name) ? name : "/x";
  if (top.meant == node_kind::INTERFACE) return head + " {";
  // Behind STORABLE CLASS name IMPLEMENTATION, of which the last may be missing.
  const auto is_ldap = [&](uint32_t word) {
    return top.count > word && slice(in, {word, word + 1}) == "LDAPV3";
  };
  return head +
         (is_ldap(3) || is_ldap(4) ? " IMPLEMENTATION LDAPV3 {" : " IMPLEMENTATION TESSEL7 {");
}

// A head that the reader takes, for that of a block whose own it may not take.
static std::string sound_head(const judging& in, uint32_t index) {
  const node& node = in.at(index);
  if (node.meant == node_kind::INTERFACE || node.meant == node_kind::IMPLEMENTATION)
    return class_head(in);
  return "STRING N {";
}

// Judges a part inside the two innermost blocks, which decide what may stand there.
static verdict judge_framed(judging& in, std::string_view part, bool is_head) {
  const size_t blocks = std::min<size_t>(in.open.size(), 2);
  in.frame.clear();
  if (blocks > 0) in.frame = in.open.front().head;
  if (blocks > 1) in.frame += in.open.back().head;
  in.frame += '\n';
  const size_t before = in.frame.size();
  in.frame += part;
  // On a line of its own: the part may end with a string that is not closed.
  in.frame += '\n';
  in.frame.append(blocks + (is_head ? 1 : 0), '}');
  verdict result = judge(in.frame);
  result.ended = result.ended || result.taken > before + part.size() + 1;
  result.taken = std::clamp<size_t>(result.taken, before + 1, before + part.size()) - before;
  return result;
}

static bool is_full(const judging& in) {
  return in.result.mistakes.size() >= in.most;
}

static void add_mistake(judging& in, verdict told, uint64_t start) {
  if (is_full(in)) {
    ++in.result.untold;
    return;
  }
  const span where =
      own_place(in.sources, in.source_number, told.told, start + told.taken, told.ended);
  told.line = 0;  // that of the frame
  in.result.mistakes.push_back({std::move(told), where});
}

// Whether the part is sound; else the mistake is noted.
static bool take_part(judging& in, token_range range, bool is_head = false) {
  verdict told = judge_framed(in, slice(in, range), is_head);
  if (told.is_sound()) return true;
  add_mistake(in, std::move(told),
              syntax::place_of(in.definition, tokens_of(in.definition)[range.first]));
  return false;
}

// --- What is left out ----------------------------------------------------------------------------

static std::string_view entry_name(const judging& in) {
  return in.open.size() > 1 ? in.open.back().name : std::string_view();
}

// Of a part that has no name any word may be one.
static void leave_out_words(judging& in, token_range range) {
  const std::string_view name = syntax::name_of(in.text(), in.definition, in.at(0));
  if (is_full(in)) return;
  for (uint32_t i = range.first; i < range.end; ++i)
    if (kind_at(in, i) == DPARSE_TOKEN_WORD)
      leave_out(in.missing, {in.at(0).meant, name, slice(in, {i, i + 1})});
}

static void leave_out_member(judging& in, const node& member) {
  const std::string_view definition = syntax::name_of(in.text(), in.definition, in.at(0));
  const std::string_view name = syntax::name_of(in.text(), in.definition, member);
  if (member.meant == node_kind::ATTRIBUTE && !is_full(in))
    leave_out(in.missing, {in.at(0).meant, definition, entry_name(in), name});
  leave_out_words(in, {member.first, end_of(member)});
}

// --- Walking a definition ------------------------------------------------------------------------

// Nodes that hold members: whole ones, and broken ones inside which the tree found some.
static bool has_block(const judging& in, uint32_t index) {
  const node& node = in.at(index);
  if (node.meant == node_kind::ATTRIBUTE || node.meant == node_kind::BROKEN) return false;
  return node.kind != node_kind::BROKEN || children_begin(in, index) < end_of(node);
}

// The tokens up to "{".
static token_range head_of(const judging& in, uint32_t index) {
  const node& node = in.at(index);
  uint32_t end = node.first;
  const uint32_t most = children_begin(in, index);
  while (end < most && kind_at(in, end) != DPARSE_KEY_OPEN && kind_at(in, end) != DPARSE_KEY_CLOSE)
    ++end;
  return {node.first, end < most && kind_at(in, end) == DPARSE_KEY_OPEN ? end + 1 : end};
}

static void open_node(judging& in, uint32_t index) {
  const node& node = in.at(index);
  const token_range head = head_of(in, index);
  open_block block{.node = index,
                   .last_member_end = head.end,
                   .name = syntax::name_of(in.text(), in.definition, node)};
  const bool is_sound = take_part(in, head, true);
  block.head = is_sound ? std::string(slice(in, head)) : sound_head(in, index);
  const bool is_class =
      node.meant == node_kind::INTERFACE || node.meant == node_kind::IMPLEMENTATION;
  block.is_kept = (in.open.empty() || in.open.back().is_kept) &&
                  (is_sound || (is_class && is_short(block.name)));
  if (!block.is_kept && in.open.empty()) leave_out(in.missing, {node.meant, block.name});
  if (!block.is_kept && !in.open.empty()) leave_out_words(in, head);
  if (block.is_kept) in.result.text += block.head + '\n';
  in.open.push_back(std::move(block));
}

static void close_node(judging& in) {
  const open_block block = std::move(in.open.back());
  const node& node = in.at(block.node);
  in.open.pop_back();
  const uint32_t last = end_of(node) - 1;
  const bool is_closed = last >= block.last_member_end && kind_at(in, last) == DPARSE_KEY_CLOSE;
  if (!is_closed) {
    verdict told{message::CLOSING_BRACE_EXPECTED,
                 dparse::row_of(message::CLOSING_BRACE_EXPECTED).text};
    told.ended = true;
    const std::string_view whole = slice(in, {node.first, end_of(node)});
    told.taken = whole.size();
    const uint64_t start = static_cast<uint64_t>(whole.data() - in.text().data());
    add_mistake(in, std::move(told), start);
  }
  if (block.is_kept) in.result.text += "}\n";
  if (!in.open.empty()) in.open.back().last_member_end = end_of(node);
}

static void judge_member(judging& in, uint32_t index) {
  const node& member = in.at(index);
  const token_range range{member.first, end_of(member)};
  if (take_part(in, range)) {
    if (in.open.empty() || in.open.back().is_kept) in.result.text.append(slice(in, range)) += '\n';
  } else {
    leave_out_member(in, member);
  }
  if (!in.open.empty()) in.open.back().last_member_end = range.end;
}

mended judge_parts(std::span<const source> sources, uint32_t source, uint32_t definition,
                   size_t most, left_out& missing) {
  judging in{sources, source, sources[source].tree.definitions[definition], most, missing};
  for (uint32_t i = 0; i < nodes_of(in.definition).size(); ++i) {
    while (!in.open.empty() && end_of(in.at(in.open.back().node)) <= in.at(i).first) close_node(in);
    if (has_block(in, i)) {
      open_node(in, i);
    } else {
      judge_member(in, i);
    }
  }
  while (!in.open.empty()) close_node(in);
  std::ranges::stable_sort(in.result.mistakes, {},
                           [](const mistake& each) { return each.where.start; });
  // Of several braces that are missing at one place only one is told.
  std::vector<mistake>& all = in.result.mistakes;
  const auto is_same = [](const mistake& a, const mistake& b) {
    return a.told.told == b.told.told && a.where.start == b.where.start;
  };
  all.erase(std::unique(all.begin(), all.end(), is_same), all.end());
  return std::move(in.result);
}

}  // namespace lint
