#include "lint/sentence.h"

#include <charconv>

#include "dd/class_names.h"
#include "dd/types.h"
#include "dd/values.h"
#include "dd/visible.h"
#include "deploy/lookup.h"
#include "lint/fill.h"
#include "lint/kept.h"

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
  std::string other_owner{};
  bool is_twice = false;    // it stands there once more, and only the first has the storage
  const char* remark = "";  // about the second place
};

}  // namespace

// As the language writes it, where nothing in it needs an escape.
static std::string as_string(const char* text) {
  return std::string(1, '"').append(text) += '"';
}

static std::string type_text(const telling& t, const node_place& at) {
  return std::string(text_of(t.in.all, type_span(t.in.all, at)));
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

static std::string number_text(const telling& t) {
  const std::string_view text = t.at ? attribute_text(t.in.all, *t.at, "ID") : "";
  return std::string(text.empty() ? "0" : text);
}

// From the text where it is short enough: else an index of the input's names is made for it.
static int32_t own_number(const telling& t) {
  tav_ebuf ebuf{};
  const std::string text = number_text(t);
  int32_t number = 0;
  const auto read = std::from_chars(text.data(), text.data() + text.size(), number);
  if (read.ec == std::errc() && read.ptr == text.data() + text.size()) return number;
  tav_flist_t* own = t.state.fields.find(t.about.field, &ebuf);
  return own != nullptr ? dd_int(own, TAV_FLD_FIELD_NUM, &ebuf) : 0;
}

static void find_number(telling& t) {
  tav_ebuf ebuf{};
  tav_flist_t* other = tav_deploy_get_field_by_id(t.state.working_fields, own_number(t));
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

static std::string owner_text(std::string_view entry, const char* class_name) {
  std::string text(entry);
  return text.append(entry.empty() ? "class " : " in class ").append(class_name);
}

// The name of the entry that an attribute stands in; empty for the class itself.
static std::string_view entry_around(const telling& t, node_place at) {
  const uint32_t attribute = at.node;
  const syntax::definition& definition = definition_of(t.in.all, at);
  while (--at.node > 0) {
    const bool is_entry = node_of(t.in.all, at).meant == node_kind::ENTRY;
    if (is_entry && syntax::behind(definition, at.node) > attribute)
      return text_of(t.in.all, name_span(t.in.all, at));
  }
  return {};
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
  const size_t count = nodes_of(definition_of(t.in.all, at)).size();
  for (at.node = 1; at.node < count; ++at.node) {
    if (node_of(t.in.all, at).kind != node_kind::ATTRIBUTE) continue;
    if (!by_view::equal(text_of(t.in.all, name_span(t.in.all, at)), "SQL_TABLE")) continue;
    const span value = value_span(t.in.all, at);
    if (!by_view::equal(text_of(t.in.all, value), wanted)) continue;
    if (is_own && at.node == own.node) continue;
    t.other_owner = owner_text(entry_around(t, at), t.about.related_class);
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
    if (by_view::equal(text_of(t.in.all, value), wanted))
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

// --- What the dictionary has ---------------------------------------------------------------------

static bool is_kept(const telling& t) {
  return t.row.text.find("{remedy}") != t.row.text.npos;
}

// What a field definition has in the dictionary.
static void find_old(telling& t) {
  if (is_kept(t)) t.old = held_storage(t.in, t.state, t.about, t.row.id);
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

// The type is told first; the number would be found only when that is corrected.
static std::string number_too(const telling& t) {
  tav_ebuf ebuf{};
  tav_flist_t* known = tav_deploy_get_field_by_name(t.state.working_fields, t.about.field);
  const std::string number = number_text(t);
  const std::string old =
      known != nullptr ? std::to_string(dd_int(known, TAV_FLD_FIELD_NUM, &ebuf)) : number;
  return old == number ? "" : " Its ID differs, too: " + number + " here and " + old + " there.";
}

static bool is_system(const telling& t, const char* keyword) {
  return t.at && by_view::equal(attribute_text(t.in.all, *t.at, keyword), "SYSTEM");
}

static std::string system_text(const telling& t) {
  const bool is_both = is_system(t, "CREATE") && is_system(t, "MODIFY");
  if (is_both) return "CREATE = SYSTEM and MODIFY = SYSTEM";
  return std::string(t.about.attribute) + " = SYSTEM";
}

static std::string part_text(const telling& t, std::string_view name) {
  const auto text = [](const char* value) { return std::string(value != nullptr ? value : ""); };
  if (name == "class") return text(t.about.class_name);
  if (name == "field") return text(t.about.field);
  if (name == "table") return text(t.about.table);
  if (name == "column") return text(t.about.column);
  if (name == "related") return t.related.empty() ? text(t.about.related_class) : t.related;
  if (name == "type") return t.at ? type_text(t, *t.at) : "";
  if (name == "number") return number_text(t);
  if (name == "old") return t.old;
  if (name == "new") return own_storage(t.in, t.about, t.row.id);
  if (name == "remedy") return storage_remedy(t.about, t.old, own_storage(t.in, t.about, t.row.id));
  if (name == "owner") return owner_text(text(t.about.field), t.about.class_name);
  if (name == "other_owner")
    return t.other_owner.empty() ? owner_text("", t.about.related_class) : t.other_owner;
  if (name == "system") return system_text(t);
  if (name == "number_too") return number_too(t);
  return there_text(t);
}

static bool is_defined(const telling& t) {
  return deploy::known_field(t.state.working_fields, t.about.field, dd_hash(t.about.field)) !=
         nullptr;
}

// What stands in the row, unless something else is the cause.
static std::string_view text_for(const telling& t) {
  constexpr std::string_view REFUSED =
      "{field}{there}, is not defined, because its definition is refused: correct that.";
  constexpr std::string_view TWICE =
      "{field} stands twice in the same entry of class {class}{there}, and only the first has "
      "storage: remove one.";
  constexpr std::string_view UNDEFINED =
      "{field} in class {class} is not defined, so that nobody knows whether it needs a column: "
      "define it, or correct the name.";
  constexpr std::string_view IN_SUBCLASS =
      "{field} stands in no table, because subclass {class} has none of its own: put it into an "
      "ARRAY or SUBSTRUCT that has SQL_TABLE.";
  if (t.is_twice) return TWICE;
  if (t.row.second == other::REFUSED && t.there) return REFUSED;
  if (t.row.id != "column-without-table") return t.row.text;
  if (!is_defined(t)) return UNDEFINED;
  return t.about.around == nullptr && dd_is_subclass(t.about.class_name) ? IN_SUBCLASS : t.row.text;
}

static std::string sentence_of(const telling& t) {
  const std::string_view text = text_for(t);
  std::string sentence = filled(text, [&t](std::string_view name) { return part_text(t, name); });
  if (!t.at) sentence += " The dictionary holds it so.";
  return dd_visible(sentence);
}

// Storage that is missing although it is written: the interface has an entry of that name once
// more, which is to blame.
static void blame_second(telling& t) {
  node_place attribute;
  const bool has_it = t.at && t.row.at == blame::NAME && t.about.class_name != nullptr &&
                      t.about.field != nullptr && t.about.attribute != nullptr &&
                      find_attribute(t.in.all, *t.at, t.about.attribute, attribute);
  if (!has_it) return;
  const auto first = find_on(t.in, t.about, definition_side::INTERFACE);
  t.at = find_on(t.in, t.about, definition_side::INTERFACE, 1);
  t.is_twice = first && t.at && first->node != t.at->node;
  if (t.is_twice) set_there(t, name_span(t.in.all, *first), "It stands here first.");
}

// Of entries that have the same name the one whose type is another than that of the definition.
static void blame_other_type(telling& t) {
  constexpr size_t MOST = 100;
  if (t.row.second != other::DEFINITION || !t.at) return;
  node_place at = *t.at;
  for (size_t n = 1; n < MOST && by_view::equal(type_text(t, at), t.old); ++n) {
    const auto next = find_on(t.in, t.about, t.about.side, n);
    if (!next || next->node == at.node) return;
    at = *next;
  }
  t.at = at;
}

finding finding_of(subject_finder& in, deploy::import_state& state, const sentence_row& row,
                   const deploy::subject& about, size_t repeat) {
  telling t{in, state, row, about};
  t.at = find(in, about, repeat);
  blame_second(t);
  if (!t.is_twice) find_second(t);
  blame_other_type(t);
  find_old(t);
  finding found{row.id, row.normal, own_span(t), sentence_of(t), words_of(about)};
  if (t.there) found.related.push_back({*t.there, t.remark});
  return found;
}

}  // namespace lint
