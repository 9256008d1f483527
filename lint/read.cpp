#include "lint/read.h"

#include <algorithm>

#include "dd/field_ids.h"
#include "dd/values.h"
#include "lint/broken.h"
#include "lint/collect.h"
#include "lint/own_place.h"
#include "lint/strays.h"
#include "lint/syntax_sentence.h"

namespace lint {

using dparse::message;
using syntax::node_kind;

namespace {

struct source_reading {
  const index& all;
  uint32_t source;
  reading& into;
  result& told;

  const syntax::tree& tree() const { return all.sources[source].tree; }
};

}  // namespace

static std::string subject_of(const source_reading& in, const node_place& at) {
  static constexpr const char* KINDS[] = {"field ", "class ", "implementation of ", "", "", ""};
  const auto name = name_of(in.all, at);
  constexpr size_t MOST = 240;  // sound names are longer than that nearly never
  if (name.empty()) return "syntax";
  return KINDS[static_cast<size_t>(node_of(in.all, at).meant)] + std::string(name.substr(0, MOST));
}

// What is defined twice was defined elsewhere first.
static void relate_first(const source_reading& in, const node_place& at, finding& found) {
  const defined* first = find(in.all, node_of(in.all, at).meant, name_of(in.all, at));
  const bool is_itself = first == nullptr || (first->where.source == at.source &&
                                              first->where.definition == at.definition);
  if (is_itself) return;
  const span there = name_span(in.all, first->where);
  found.related.push_back({there, "The first definition is here."});
}

static bool is_about_first(message told) {
  switch (told) {
    case message::DUPLICATE_CLASS:
    case message::DUPLICATE_INTERFACE:
    case message::DUPLICATE_IMPLEMENTATION:
    case message::DUPLICATE_FIELD_TYPES:
    case message::FIELD_TYPE_DIFFERS:
    case message::DUPLICATE_FIELD_IDS:
    case message::FIELD_ID_DIFFERS:
      return true;
    default:
      return false;
  }
}

static void tell_mistake(source_reading& in, const node_place* at, const mistake& one,
                         const span* noticed = nullptr) {
  if (is_full(in.told)) {
    return count_untold(in.told, dparse::row_of(one.told.told).id, level::ERROR);
  }
  finding found{dparse::row_of(one.told.told).id, level::ERROR, one.where, ""};
  found.reader_line = one.told.line;
  if (found.reader_line == 0) {
    found.reader_line = line_at(in.tree(), one.where.start + one.where.length);
  }
  found.subject = at != nullptr ? subject_of(in, *at) : "syntax";
  if (at != nullptr && is_about_first(one.told.told)) relate_first(in, *at, found);
  if (noticed != nullptr) found.related.push_back({*noticed, "The reader notices it here."});
  found.sentence = syntax_sentence(in.all, found, one.told);
  tell(in.told, std::move(found));
}

// The reader's own mistake is that of the first broken part, unless it stands before that.
static void tell_all(source_reading& in, const node_place& at, const mistake& first,
                     const std::vector<mistake>& parts) {
  const bool is_first_part =
      !parts.empty() && parts[0].where.start <= first.where.start + first.where.length;
  if (!is_first_part) {
    tell_mistake(in, &at, first);
  } else {
    const bool is_elsewhere = first.where.start > parts[0].where.start + parts[0].where.length;
    mistake own{first.told, parts[0].where};
    own.told.ended = first.told.ended && !is_elsewhere;
    tell_mistake(in, &at, own, is_elsewhere ? &first.where : nullptr);
  }
  for (size_t i = is_first_part ? 1 : 0; i < parts.size(); ++i) tell_mistake(in, &at, parts[i]);
}

// --- What is sound in what is broken -------------------------------------------------------------

// A field without a number gets one that no other has, so that nobody compares it.
static void number_field(source_reading& in, std::string_view name) {
  static constexpr int32_t FIRST = 0x40000000;
  tav_ebuf ebuf{};
  tav_flist_t* field = in.into.sound.fields.find(std::string(name).c_str(), &ebuf);
  if (field == nullptr || dd_int(field, TAV_FLD_FIELD_NUM, &ebuf) != 0) return;
  leave_out(in.into.missing, {node_kind::FIELD, name, {}, "ID"});
  dd_set_int(field, TAV_FLD_FIELD_NUM, FIRST + in.into.sound.fields.count(&ebuf), &ebuf);
}

static void leave_out_all(source_reading& in, const node_place& at) {
  const syntax::definition& definition = definition_of(in.all, at);
  const node_kind meant = node_of(in.all, at).meant;
  const auto name = name_of(in.all, at);
  leave_out(in.into.missing, {meant, name});
  for (const syntax::token& token : syntax::tokens_of(definition))
    if (token.kind() == DPARSE_TOKEN_WORD)
      leave_out(in.into.missing, {meant, name, syntax::text_of(in.tree().text, definition, token)});
}

// What is sound by itself may still be defined twice.
static void read_mended(source_reading& in, const node_place& at, const std::string& text,
                        const mistake& first) {
  const node_kind meant = node_of(in.all, at).meant;
  const auto name = name_of(in.all, at);
  leave_out(in.into.missing, {meant, name, {}, "*"});  // something of it
  if (text.empty()) return leave_out_all(in, at);
  verdict again = judge(text, in.into.sound);
  if (again.is_sound()) {
    if (meant == node_kind::FIELD) number_field(in, name);
    return;
  }
  leave_out_all(in, at);
  const span name_place = name_span(in.all, at);
  // The reader's own mistake is the first of its file.
  if (again.told == first.told.told || name_place.start < first.where.start) return;
  again.line = 0;
  tell_mistake(in, &at, {std::move(again), name_place});
}

// Where no more can be told the definitions are not checked either: what is sound is not needed.
static void read_broken(source_reading& in, const node_place& at, verdict told, uint64_t start) {
  const mistake first{
      told, own_place(in.all.sources, in.source, told.told, start + told.taken, told.ended)};
  const mended parts =
      judge_parts(in.all.sources, in.source, at.definition, room_in(in.told), in.into.missing);
  uint64_t& untold = in.told.untold[static_cast<size_t>(level::ERROR)];
  if (is_full(in.told)) {
    untold += std::max<uint64_t>(parts.untold, 1);
    return;
  }
  tell_all(in, at, first, parts.mistakes);
  untold += parts.untold;
  if (!is_full(in.told)) read_mended(in, at, parts.text, first);
}

// --- Sources -------------------------------------------------------------------------------------

// Cut out of the text and read by itself.
static void read_alone(source_reading& in, uint32_t definition) {
  const node_place at{in.source, definition, 0};
  const syntax::definition& alone = definition_of(in.all, at);
  const uint64_t start = syntax::place_of(alone, tokens_of(alone)[0]);
  const std::string_view text = in.tree().text;
  const std::string_view own = text.substr(start, alone.start + alone.length - start);
  verdict told = is_full(in.told) ? judge(own) : judge(own, in.into.sound);
  if (told.is_sound()) return;
  told.line = 0;
  read_broken(in, at, std::move(told), start);
}

// Of strays the class knows nothing, and those before the one that failed were read as fields.
static void leave_out_strays(source_reading& in, const std::vector<stray_entry>& strays,
                             uint32_t failed) {
  const std::string_view text = in.tree().text;
  for (const stray_entry& each : strays) {
    const node_place at{in.source, each.definition, 0};
    const node_place meant_for{in.source, each.meant_for, 0};
    const node_kind meant = node_of(in.all, meant_for).meant;
    const auto class_name = name_of(in.all, meant_for);
    const syntax::definition& stray = definition_of(in.all, at);
    for (const syntax::token& token : syntax::tokens_of(stray))
      if (token.kind() == DPARSE_TOKEN_WORD)
        leave_out(in.into.missing, {meant, class_name, syntax::text_of(text, stray, token)});
    if (each.definition < failed) number_field(in, name_of(in.all, at));
  }
}

// The first definition that fails is read with everything behind it, so that its mistake is the
// reader's own.
static void read_source(source_reading& in) {
  verdict told = judge(in.tree().text, in.into.sound);
  if (told.is_sound()) return;
  const size_t count = in.tree().definitions.size();
  auto next = static_cast<uint32_t>(told.definitions);
  if (next >= count) {
    const span where = own_place(in.all.sources, in.source, told.told, told.taken, told.ended);
    return tell_mistake(in, nullptr, {std::move(told), where});
  }
  const std::vector<stray_entry> strays = strays_in(in.all, in.source);
  leave_out_strays(in, strays, next);
  read_broken(in, {in.source, next, 0}, std::move(told), 0);
  while (++next < count)
    if (find_stray(strays, next) == nullptr) read_alone(in, next);
}

void read_sources(const index& all, reading& into, result& told) {
  for (uint32_t source = 0; source < all.sources.size(); ++source) {
    source_reading in{all, source, into, told};
    read_source(in);
  }
}

}  // namespace lint
