#include "lint/sentence.h"

#include "dd/types.h"
#include "dd/values.h"
#include "dd/visible.h"
#include "deploy/lookup.h"
#include "lint/fill.h"

namespace lint {

using deploy::definition_side;
using syntax::node_kind;

namespace {

struct telling {
  subject_finder& in;
  deploy::import_state& state;
  const sentence_row& row;
  const deploy::subject& about;
  std::optional<node_place> at{};  // what it is about
  std::optional<span> there{};     // the second place
  std::string related{};
  std::string old{};
  const char* remark = "";  // about the second place
};

}  // namespace

static std::string_view source_text(const index& all, const span& where) {
  return std::string_view(all.sources[where.source].tree.text).substr(where.start, where.length);
}

// As the language writes it, where nothing in it needs an escape.
static std::string as_string(const char* text) {
  return std::string(1, '"').append(text) += '"';
}

static std::string type_text(const telling& t, const node_place& at) {
  return std::string(source_text(t.in.all, type_span(t.in.all, at)));
}

static const char* keyword_of(int32_t type) {
  const char* keyword = dd_type_keyword(type);
  return keyword != nullptr ? keyword : "of no type";
}

// --- The second place ----------------------------------------------------------------------------

static void set_there(telling& t, const span& where, const char* remark) {
  t.there = where;
  t.remark = remark;
}

static void find_definition(telling& t) {
  const dd_known* known =
      deploy::known_field(t.state.working_fields, t.about.field, dd_hash(t.about.field));
  if (known != nullptr) t.old = keyword_of(known->type.value_or(0));
  const defined* field = find(t.in.all, node_kind::FIELD, t.about.field);
  if (field != nullptr)
    set_there(t, type_span(t.in.all, field->where), "The field is defined here.");
}

static void find_refused(telling& t) {
  const defined* field = find(t.in.all, node_kind::FIELD, t.about.field);
  if (field != nullptr)
    set_there(t, name_span(t.in.all, field->where), "This definition is refused.");
}

static void find_number(telling& t) {
  tav_ebuf ebuf{};
  tav_flist_t* own = t.state.fields.find(t.about.field, &ebuf);
  if (own == nullptr) return;
  tav_flist_t* other =
      tav_deploy_get_field_by_id(t.state.working_fields, dd_int(own, TAV_FLD_FIELD_NUM, &ebuf));
  if (other == nullptr) return;
  t.related = dd_text(other, TAV_FLD_FIELD_NAME, &ebuf);
  const defined* field = find(t.in.all, node_kind::FIELD, t.related);
  if (field != nullptr)
    set_there(t, name_span(t.in.all, field->where), "This field has the number.");
}

static void find_interface(telling& t) {
  const auto at = find_on(t.in, t.about, definition_side::INTERFACE);
  if (at) {
    t.old = type_text(t, *at);
    return set_there(t, type_span(t.in.all, *at), "The interface's entry is here.");
  }
  const deploy::subject whole{.class_name = t.about.class_name};
  const auto of_class = find_on(t.in, whole, definition_side::INTERFACE);
  if (of_class) set_there(t, name_span(t.in.all, *of_class), "The interface is here.");
}

// The table's other user: the first attribute of the related class that names it, but the own.
static void find_table(telling& t) {
  const defined* other = find(t.in.all, node_kind::IMPLEMENTATION, t.about.related_class);
  if (other == nullptr) return;
  const std::string wanted = as_string(t.about.table);
  node_place at = other->where;
  node_place own;
  const bool is_own = t.at && t.at->source == at.source && t.at->definition == at.definition &&
                      find_attribute(t.in.all, *t.at, "SQL_TABLE", own);
  const uint32_t count = definition_of(t.in.all, at).node_count;
  for (at.node = 1; at.node < count; ++at.node) {
    if (node_of(t.in.all, at).kind != node_kind::ATTRIBUTE) continue;
    if (!by_view::equal(source_text(t.in.all, name_span(t.in.all, at)), "SQL_TABLE")) continue;
    const span value = value_span(t.in.all, at);
    if (!by_view::equal(source_text(t.in.all, value), wanted)) continue;
    if (!is_own || at.node != own.node)
      return set_there(t, value, "The table's other user is here.");
  }
}

static void find_related(telling& t) {
  t.related = t.about.related_class != nullptr ? t.about.related_class : "";
  if (t.about.table != nullptr) return find_table(t);
  const deploy::subject other{.class_name = t.about.related_class, .field = t.about.field};
  const auto at = find_on(t.in, other, definition_side::INTERFACE);
  if (at) set_there(t, name_span(t.in.all, *at), "The related class has it here.");
}

// The entry before this one, right beside it, that names the column.
static void find_column(telling& t) {
  deploy::subject around = t.about;
  around.field = t.about.around != nullptr ? t.about.around->name : nullptr;
  around.around = t.about.around != nullptr ? t.about.around->around : nullptr;
  const auto parent = find_on(t.in, around, definition_side::IMPLEMENTATION);
  if (!parent) return;
  const std::string wanted = as_string(t.about.column);
  const syntax::definition& definition = definition_of(t.in.all, *parent);
  const uint32_t end = syntax::behind(definition, parent->node);
  node_place at = *parent;
  for (++at.node; at.node < end; at.node = syntax::behind(definition, at.node)) {
    node_place column;
    if (t.at && at.node == t.at->node) return;
    if (node_of(t.in.all, at).meant != node_kind::ENTRY ||
        !find_attribute(t.in.all, at, "SQL_COLUMN", column))
      continue;
    const span value = value_span(t.in.all, column);
    if (by_view::equal(source_text(t.in.all, value), wanted))
      return set_there(t, value, "The column stands here first.");
  }
}

static void find_second(telling& t) {
  switch (t.row.second) {
    case other::NONE:
      return;
    case other::DEFINITION:
      return find_definition(t);
    case other::NUMBER:
      return find_number(t);
    case other::REFUSED:
      return find_refused(t);
    case other::INTERFACE:
      return find_interface(t);
    case other::RELATED:
      return find_related(t);
    case other::COLUMN:
      return find_column(t);
    case other::EARLIER: {
      const auto first = find(t.in, t.about);
      if (first) set_there(t, name_span(t.in.all, *first), "It stands here first.");
    }
  }
}

// What a field definition has in the dictionary.
static void find_old(telling& t) {
  if (t.about.class_name != nullptr || !t.old.empty()) return;
  tav_ebuf ebuf{};
  tav_flist_t* known = tav_deploy_get_field_by_name(t.state.working_fields, t.about.field);
  if (known == nullptr) return;
  t.old = t.row.at == blame::TYPE ? keyword_of(dd_int(known, TAV_FLD_FIELD_TYPE, &ebuf))
                                  : std::to_string(dd_int(known, TAV_FLD_FIELD_NUM, &ebuf));
}

// --- The own place -------------------------------------------------------------------------------

static span own_span(const telling& t) {
  node_place attribute;
  if (!t.at) return {0, 0, 0};
  if (t.row.at == blame::TYPE) return type_span(t.in.all, *t.at);
  const bool has_value = t.row.at == blame::VALUE && t.about.attribute != nullptr &&
                         find_attribute(t.in.all, *t.at, t.about.attribute, attribute);
  return has_value ? value_span(t.in.all, attribute) : name_span(t.in.all, *t.at);
}

// --- The sentence --------------------------------------------------------------------------------

static std::string there_text(const telling& t) {
  if (t.there) return std::string(", ").append(place_text(t.in.all, *t.there));
  const bool is_known = t.row.second == other::DEFINITION || t.row.second == other::NUMBER ||
                        t.row.second == other::RELATED;
  return is_known ? ", in the dictionary" : "";
}

static std::string number_text(const telling& t) {
  node_place attribute;
  if (!t.at || !find_attribute(t.in.all, *t.at, "ID", attribute)) return "0";
  return std::string(source_text(t.in.all, value_span(t.in.all, attribute)));
}

static std::string part_text(const telling& t, std::string_view name) {
  const auto text = [](const char* value) { return std::string(value != nullptr ? value : ""); };
  if (name == "class") return text(t.about.class_name);
  if (name == "field") return text(t.about.field);
  if (name == "table") return text(t.about.table);
  if (name == "column") return text(t.about.column);
  if (name == "attribute") return text(t.about.attribute);
  if (name == "related") return t.related.empty() ? text(t.about.related_class) : t.related;
  if (name == "type") return t.at ? type_text(t, *t.at) : "";
  if (name == "number") return number_text(t);
  if (name == "old") return t.old;
  return there_text(t);
}

static std::string sentence_of(const telling& t) {
  constexpr std::string_view REFUSED =
      "{field}{there}, is not defined, because its definition is refused: correct that.";
  const std::string_view text = t.row.second == other::REFUSED && t.there ? REFUSED : t.row.text;
  std::string sentence = filled(text, [&t](std::string_view name) { return part_text(t, name); });
  if (!t.at) sentence += " The dictionary holds it so.";
  return dd_visible(sentence);
}

// Storage that is missing although it is written: the interface has an entry of that name once
// more.
static std::optional<node_place> without_storage(telling& t) {
  node_place attribute;
  const bool has_it = t.at && t.row.at == blame::NAME && t.about.class_name != nullptr &&
                      t.about.attribute != nullptr &&
                      find_attribute(t.in.all, *t.at, t.about.attribute, attribute);
  return has_it ? find_on(t.in, t.about, definition_side::INTERFACE, 1) : t.at;
}

finding finding_of(subject_finder& in, deploy::import_state& state, const sentence_row& row,
                   const deploy::subject& about) {
  telling t{in, state, row, about};
  const bool is_second = row.second == other::EARLIER;
  t.at = find(in, about, is_second ? 1 : 0);
  t.at = without_storage(t);
  find_second(t);
  find_old(t);
  finding found{row.id, row.normal, own_span(t), sentence_of(t), words_of(about)};
  if (t.there) found.related.push_back({*t.there, t.remark});
  return found;
}

}  // namespace lint
