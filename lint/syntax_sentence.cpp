#include "lint/syntax_sentence.h"

#include <algorithm>

#include "dd/utf8.h"
#include "dd/visible.h"
#include "dparse/attributes.h"
#include "dparse/tokens.h"
#include "lint/fill.h"
#include "lint/syntax_sentences.h"

namespace lint {

using dparse::message;
using syntax::node;
using syntax::node_kind;

namespace {

struct telling {
  const index& all;
  const finding& found;
  const verdict& told;
  const syntax::tree& in;
  const syntax::definition* around = nullptr;  // the definition; null: there is none
  uint32_t token = 0;  // of the definition: how many of its tokens stand in front of the place
};

// Characters that nobody sees, and that editors and web pages leave in texts that are copied.
struct invisible {
  std::string_view bytes;
  std::string_view code;
  std::string_view name;
};

constexpr invisible INVISIBLE[] = {
    {"\xc2\xa0", "U+00A0", "no-break space"},
    {"\xc2\xad", "U+00AD", "soft hyphen"},
    {"\xe2\x80\x8b", "U+200B", "zero width space"},
    {"\xe2\x80\x8c", "U+200C", "zero width non-joiner"},
    {"\xe2\x80\x8d", "U+200D", "zero width joiner"},
    {"\xe2\x80\x8e", "U+200E", "left-to-right mark"},
    {"\xe2\x80\x8f", "U+200F", "right-to-left mark"},
    {"\xe2\x80\xaf", "U+202F", "narrow no-break space"},
    {"\xe2\x81\xa0", "U+2060", "word joiner"},
    {"\xef\xbb\xbf", "U+FEFF", "byte order mark"},
};

constexpr size_t MOST_SHOWN = 60;  // bytes of a token

}  // namespace

// --- What stands there ---------------------------------------------------------------------------

static std::string_view value_text(const telling& t) {
  return std::string_view(t.in.text).substr(t.found.where.start, t.found.where.length);
}

// As people see it: its start, with what is invisible named.
static std::string shown(std::string_view text) {
  const std::string_view start = dd_utf8_cut(text, MOST_SHOWN);
  std::string result = dd_visible(start);
  for (const invisible& each : INVISIBLE) {
    const std::string name = std::string("<").append(each.code).append(">");
    for (size_t at = 0; (at = result.find(each.bytes, at)) != result.npos; at += name.size())
      result.replace(at, each.bytes.size(), name);
  }
  return start.size() < text.size() ? result + "..." : result;
}

static std::string in_quotes(std::string_view text) {
  if (text.starts_with('"')) return shown(text);
  return std::string("'").append(shown(text)).append("'");
}

static std::string_view token_text(const telling& t, uint32_t token) {
  return syntax::text_of(t.in.text, *t.around, tokens_of(*t.around)[token]);
}

static std::string before_text(const telling& t) {
  if (t.around == nullptr || t.token == 0) return "what stands before it";
  const std::string_view text = token_text(t, t.token - 1);
  return text.find_first_of("{}=;") == 0 ? in_quotes(text) : shown(text);
}

// The word in front of "="; that in front of the value where "=" is missing.
static std::string keyword_text(const telling& t) {
  if (t.around == nullptr || t.token == 0) return "The attribute";
  const bool is_value = t.token > 1 && token_text(t, t.token - 1) == "=";
  return shown(token_text(t, t.token - (is_value ? 2 : 1)));
}

static const dparse::value_word* words_for(message told) {
  if (told == message::INVALID_ACCESS_LEVEL) return dparse::ACCESS_LEVELS;
  const auto all = dparse::attributes();
  const auto row = std::ranges::find_if(all, [told](const dparse::attribute& each) {
    return each.words != nullptr && (each.refused == told || each.expected == told);
  });
  return row != all.end() ? row->words : nullptr;
}

static std::string choices_text(message told) {
  std::string text;
  const dparse::value_word* word = words_for(told);
  for (; word != nullptr && word->text != nullptr; ++word)
    text.append(text.empty() ? "" : ", ").append(dparse::keyword_text(word->token));
  return text;
}

// --- What is around it ---------------------------------------------------------------------------

static std::string words_of(const telling& t, const node& each) {
  static constexpr const char* KINDS[] = {"field ", "class ", "the implementation of ", "entry "};
  const auto kind = static_cast<size_t>(each.meant);
  const std::string_view name = syntax::name_of(t.in.text, *t.around, each);
  if (kind >= std::size(KINDS) || name.empty()) return "the definition";
  return KINDS[kind] + shown(name);
}

// The innermost definition or entry that holds the place; for a brace that is missing, the
// innermost that is not closed. Far behind the others' beginnings the definition has to do.
static const node& node_around(const telling& t) {
  constexpr ptrdiff_t MOST_STEPS = 1000;
  const bool is_behind = t.found.where.length == 0;
  const uint32_t token = is_behind && t.token > 0 ? t.token - 1 : t.token;
  const auto nodes = syntax::nodes_of(*t.around);
  auto at = std::ranges::partition_point(nodes,
                                         [token](const node& each) { return each.first <= token; });
  const auto nearest = std::max(nodes.begin(), at - std::min(MOST_STEPS, at - nodes.begin()));
  uint32_t closed = UINT32_MAX;  // the brace that closes what is inside
  while (at > nearest) {
    --at;
    const bool holds = token - at->first < at->count;
    const bool is_block = at->meant != node_kind::ATTRIBUTE && at->meant != node_kind::BROKEN;
    const bool is_itself = !is_behind && at->first == token;
    if (!holds || !is_block || is_itself) continue;
    const uint32_t last = at->first + at->count - 1;
    if (!is_behind || last == closed || token_text(t, last) != "}") return *at;
    closed = last;
  }
  return nodes[0];
}

static std::string thing_text(const telling& t) {
  return t.around != nullptr ? words_of(t, node_around(t)) : "the definition";
}

// --- Two definitions -----------------------------------------------------------------------------

static std::string name_text(const telling& t) {
  if (t.around == nullptr) return "";
  return shown(syntax::name_of(t.in.text, *t.around, nodes_of(*t.around)[0]));
}

static std::string source_text(const index& all, const span& where) {
  return shown(
      std::string_view(all.sources[where.source].tree.text).substr(where.start, where.length));
}

static node_place own_place(const telling& t) {
  return {t.found.where.source, static_cast<uint32_t>(t.around - t.in.definitions.data()), 0};
}

static std::string type_text(const telling& t, const node_place& at) {
  return source_text(t.all, type_span(t.all, at));
}

static std::string id_text(const telling& t, const node_place& at) {
  const std::string_view id = attribute_text(t.all, at, "ID");
  return id.empty() ? "none" : shown(id);
}

static node_place first_place(const telling& t) {
  const node& top = nodes_of(*t.around)[0];
  const defined* first = find(t.all, top.meant, syntax::name_of(t.in.text, *t.around, top));
  return first != nullptr ? first->where : own_place(t);
}

static std::string definition_text(const telling& t, std::string_view name) {
  if (t.around == nullptr) return "";
  if (name == "type") return type_text(t, own_place(t));
  if (name == "first_type") return type_text(t, first_place(t));
  if (name == "id") return id_text(t, own_place(t));
  if (name == "first_id") return id_text(t, first_place(t));
  return nodes_of(*t.around)[0].meant == node_kind::IMPLEMENTATION ? "implementation" : "interface";
}

static std::string there_text(const telling& t) {
  if (t.found.related.empty()) return "";
  return ", " + place_text(t.all, t.found.related[0].where);
}

// --- The sentence --------------------------------------------------------------------------------

static std::string part_text(const telling& t, std::string_view name) {
  if (name == "value") return in_quotes(value_text(t));
  if (name == "before") return before_text(t);
  if (name == "keyword") return keyword_text(t);
  if (name == "choices") return choices_text(t.told.told);
  if (name == "thing") return thing_text(t);
  if (name == "name") return name_text(t);
  if (name == "there") return there_text(t);
  if (name == "reader") return t.told.sentence;
  return definition_text(t, name);
}

// What begins where a brace is missing: a definition, which the reader takes for a member.
static std::string next_text(const telling& t) {
  if (t.found.related.empty() || t.around == nullptr) return "";
  const bool is_at_end = t.found.where.start == t.around->start + t.around->length;
  if (!is_at_end) return "";
  const syntax::definition* next = syntax::definition_at(t.in, t.found.related[0].where.start);
  if (next == nullptr || next == t.around) return "";
  const telling there{t.all, t.found, t.told, t.in, next};
  return ", before " + words_of(there, nodes_of(*next)[0]) + " begins";
}

// A message tells what the reader found instead; where nothing stands there, it is told what is
// missing: what the token in front needs, or the brace behind a value.
static std::string text_for(const telling& t) {
  constexpr std::string_view INSTEAD = ", not {value}";
  constexpr std::string_view UNCLOSED =
      "\"}\" is missing behind {before}: {thing} is not closed{next}.";
  constexpr std::string_view CUT_SHORT =
      "The file ends behind {before}, inside {thing}: complete it.";
  constexpr std::string_view LONG_STRING =
      "The string {value} is too long: at most 2047 bytes are read.";
  constexpr std::string_view CLOSES_NOTHING =
      "'}' closes nothing: remove it, or the one that is too many before it.";
  const std::string_view text = sentence_row_of(t.told.told).text;
  const std::string_view value = value_text(t);
  if (t.told.told == message::STRING_NOT_CLOSED && value.size() > 1 && value.ends_with('"'))
    return std::string(LONG_STRING);
  if (t.told.told == message::INVALID_TOKEN && value == "}") return std::string(CLOSES_NOTHING);
  if (text.find("missing behind") != text.npos || !value.empty()) return std::string(text);
  if (t.told.ended) return std::string(CUT_SHORT);
  const bool is_needed = text.starts_with("{before} needs");
  return is_needed ? std::string(text).erase(text.find(INSTEAD), INSTEAD.size())
                   : std::string(UNCLOSED);
}

static std::string invisible_text(std::string_view value) {
  for (const invisible& each : INVISIBLE)
    if (value.find(each.bytes) != value.npos)
      return " It holds an invisible character, " + std::string(each.code) + " (" +
             std::string(each.name) + "): remove that.";
  return "";
}

static void find_around(telling& t) {
  const uint64_t start = t.found.where.start;
  const bool is_behind = t.found.where.length == 0 && start > 0;
  t.around = syntax::definition_at(t.in, is_behind ? start - 1 : start);
  if (t.around == nullptr) return;
  const auto tokens = syntax::tokens_of(*t.around);
  const auto at = std::ranges::partition_point(
      tokens, [&](const syntax::token& each) { return syntax::place_of(*t.around, each) < start; });
  t.token = static_cast<uint32_t>(at - tokens.begin());
}

std::string syntax_sentence(const index& all, const finding& found, const verdict& told) {
  telling t{all, found, told, all.sources[found.where.source].tree};
  find_around(t);
  std::string sentence = filled(text_for(t), [&t](std::string_view name) {
    return name == "next" ? next_text(t) : part_text(t, name);
  });
  // A string may hold what it likes.
  if (!value_text(t).starts_with('"')) sentence += invisible_text(value_text(t));
  if (text_for(t).starts_with("{thing}")) sentence[0] = static_cast<char>(sentence[0] - 'a' + 'A');
  return dd_visible(sentence);
}

}  // namespace lint
