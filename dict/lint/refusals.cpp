#include "dict/lint/refusals.h"

#include <algorithm>

#include "dict/lint/listed_store.h"
#include "dm/field_request.h"
#include "dm/folded.h"
#include "dm/rules/class_rules.h"
#include "dm/rules/text.h"
#include "dparse/tokens.h"

namespace dict {

namespace {

struct asking {
  listed_store held;
  dm::class_world world;
  std::vector<lint::refusal> found{};
  dm::key_map<const tav_node*> accepted{};  // of this deployment, by key

  asking(const tav_flist_t* fields, const tav_flist_t* classes)
      : held(fields, classes), world(held, 0) {}
};

}  // namespace

static std::string keyword_of(uint32_t field, unsigned contexts) {
  const dd_attribute* row = dd_find_attribute(field, contexts);
  return std::string(row != nullptr ? dparse::keyword_text(row->keyword) : std::string_view());
}

// --- Fields --------------------------------------------------------------------------------------

static void ask_fields(asking& in, const lint::deployment& sent, dm::field_request& asked) {
  dm::read_request(tav_node_of(sent.fields), asked);
  dd_index<dd_by_name, int32_t> held;
  for (const dm::field_row& row : in.held.fields) held.add_first(row.name, row.type);
  for (dm::asked_field& field : asked.fields) {
    dm::problem why;
    const bool is_sound = dm::is_well_formed(field, why);
    const bool is_named = field.name != nullptr;
    if (!is_sound) {
      in.found.push_back({.field = is_named ? field.name : "",
                          .attribute = keyword_of(why.field, DD_IN_DEFINITION),
                          .sentence = why.sentence});
    }
    // One that breaks a rule is told once: classes may use it.
    field.is_planned = is_named && field.type && held.find(field.name) == nullptr;
  }
  in.world.add_fields(asked);
}

// --- Classes -------------------------------------------------------------------------------------

// The entry that the problem is about: problems name entries in words only.
static const dm::entry_def* blamed(const dm::class_def& definition, const dm::problem& why) {
  const std::string name = dm::quoted(dm::text_of(definition, dm::CLASS_NAME));
  const std::string start = dm::join({"Class ", name, ", field "});
  if (!why.sentence.starts_with(start)) return nullptr;
  for (const dm::entry_def& entry : definition.entries) {
    if (entry.elem_id != why.rec_id) continue;
    const std::string path = dm::quoted(dm::path_of(definition, entry)) + " ";
    if (std::string_view(why.sentence).substr(start.size()).starts_with(path)) return &entry;
  }
  return nullptr;
}

// How many of the findings about a class are such as the import has no check for: those about
// texts, which come first, and that about the spelling of its name.
static size_t count_unchecked(const dm::class_def& definition) {
  dm::findings texts;
  dm::check_texts(definition, texts);
  const bool is_well_named =
      dm::class_name_fault(dm::text_of(definition, dm::CLASS_NAME)) == nullptr;
  return texts.size() + (is_well_named ? 0 : 1);
}

static void add(asking& in, const dm::class_def& definition, const dm::problem& why,
                bool is_checked_before) {
  lint::refusal refused{.class_name = dm::text_of(definition, dm::CLASS_NAME),
                        .attribute = keyword_of(why.field, DD_IN_ANY_CLASS | DD_IN_ANY_ENTRY),
                        .sentence = why.sentence,
                        .is_checked_before = is_checked_before};
  if (const dm::entry_def* entry = blamed(definition, why)) {
    refused.field = dm::text_of(*entry, dm::ENTRY_NAME);
    for (int32_t up = entry->parent; up != dm::NO_PARENT;) {
      const dm::entry_def& around = definition.entries[static_cast<size_t>(up)];
      refused.around.emplace_back(dm::text_of(around, dm::ENTRY_NAME));
      up = around.parent;
    }
    std::ranges::reverse(refused.around);
  }
  in.found.push_back(std::move(refused));
}

// The definition that one of that name replaces: an earlier one of the deployment, or one that is
// held.
static const tav_node* old_of(const asking& in, const char* name) {
  const auto accepted = in.accepted.find(dm::folded(name));
  if (accepted != in.accepted.end()) return accepted->second;
  const stored_class* held = in.held.find(name);
  return held != nullptr ? held->node : nullptr;
}

// Without what is not stored, and with what stays of the old definition, which may be empty.
static void as_it_would_be_stored(dm::class_def& definition, const dm::class_def& old) {
  if (dm::needless_table(definition) != nullptr) definition.values[dm::CLASS_TABLE] = nullptr;
  dm::keep_old(definition, old);
}

// As dm/ops/set_classes.cpp sets a class, but a refusal does not end it.
static void ask_class(asking& in, const tav_node* node) {
  dm::class_def definition;
  dm::class_def old{};  // of a new class there is none
  std::vector<std::string> tables;
  dm::read_class(node, 0, definition);
  const char* name = dm::text_of(definition, dm::CLASS_NAME);
  const tav_node* replaced = old_of(in, name);
  if (replaced != nullptr) dm::read_class(replaced, 0, old);
  as_it_would_be_stored(definition, old);
  dm::findings found;
  dm::check_class(definition, in.world, tables, found);
  const size_t unchecked = count_unchecked(definition);
  for (size_t i = 0; i < found.size(); ++i) add(in, definition, found[i], i >= unchecked);
  in.world.accept(definition, tables, dm::tables_of(old));
  in.accepted[dm::folded(name)] = node;
}

std::vector<lint::refusal> refusals_of(const tav_flist_t* held_fields,
                                       const tav_flist_t* held_classes,
                                       const lint::deployment& sent) {
  asking in(held_fields, held_classes);
  dm::field_request asked;
  ask_fields(in, sent, asked);
  in.world.read_all();
  for (const tav_flist_t* storable : sent.classes) ask_class(in, tav_node_of(storable));
  return std::move(in.found);
}

static bool is_zero(const void* value, dd_value_kind kind) {
  char digits[64] = "";
  if (kind == dd_value_kind::NUMBER) return *static_cast<const int32_t*>(value) == 0;
  if (kind != dd_value_kind::DECIMAL) return false;
  tav_decimal_to_str(static_cast<const tav_decimal_t*>(value), 0, digits, sizeof digits, nullptr);
  return std::string_view(digits).find_first_of("123456789") == std::string_view::npos;
}

// Exports write zero for none.
template <size_t N>
static void forget_zeros(std::array<const void*, N>& values,
                         const std::array<dd_attribute, N>& rows) {
  for (size_t i = 0; i < N; ++i)
    if (values[i] != nullptr && is_zero(values[i], rows[i].kind)) values[i] = nullptr;
}

static void forget_zeros(dm::class_def& definition) {
  forget_zeros(definition.values, dm::CLASS_ATTRIBUTES);
  for (dm::entry_def& entry : definition.entries) forget_zeros(entry.values, dm::ENTRY_ATTRIBUTES);
}

bool leaves_as_it_is(tav_flist_t* held, tav_flist_t* sent) {
  dm::class_def definition;
  dm::class_def old;
  dm::read_class(tav_node_of(sent), 0, definition);
  dm::read_class(tav_node_of(held), 0, old);
  as_it_would_be_stored(definition, old);
  forget_zeros(definition);
  forget_zeros(old);
  dm::class_writer before;
  dm::class_writer after;
  return before.write(old) == after.write(definition);
}

}  // namespace dict
