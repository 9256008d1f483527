#include "dict/lint/listed_store.h"

#include <algorithm>

#include "dm/folded.h"
#include "dm/rules/class_rules.h"

namespace dict {

static const char* text_in(const tav_node* node, uint32_t field) {
  const auto* text = static_cast<const char*>(tav_node_get(node, field));
  return text != nullptr ? text : "";
}

static int32_t number_in(const tav_node* node, uint32_t field) {
  const auto* number = static_cast<const int32_t*>(tav_node_get(node, field));
  return number != nullptr ? *number : 0;
}

// --- What an engine answers ----------------------------------------------------------------------

static bool is_wanted(const dm::choice& wanted, const char* name) {
  return wanted.which != dm::choice::NAMED || dd_equal(wanted.name, name);
}

static bool give_fields(dm::store* store, int64_t, const dm::choice& wanted,
                        dm::visitor<dm::field_row> visitor, dm::problem&) {
  for (const dm::field_row& row : static_cast<listed_store*>(store)->fields)
    if (is_wanted(wanted, row.name) && !visitor.call(visitor.context, row)) break;
  return true;
}

// The classes of that choice: all, one, or those below one.
static std::span<const stored_class> chosen(const listed_store& from, const dm::choice& wanted) {
  const bool is_below = wanted.which == dm::choice::BELOW || wanted.which == dm::choice::KEYS_BELOW;
  if (!is_below && wanted.which != dm::choice::NAMED) return from.known;
  const std::string key = dm::folded(wanted.name);
  const dm::key_range range =
      is_below ? dm::keys_below(key) : dm::key_range{key, key + std::string(1, '\0')};
  const auto first = std::ranges::lower_bound(from.known, range.from, {}, &stored_class::key);
  return {first, std::ranges::lower_bound(from.known, range.to, {}, &stored_class::key)};
}

static bool give_classes(dm::store* store, int64_t, const dm::choice& wanted,
                         dm::visitor<dm::class_row> visitor, dm::problem&) {
  auto& from = *static_cast<listed_store*>(store);
  const bool is_whole = wanted.which != dm::choice::KEYS && wanted.which != dm::choice::KEYS_BELOW;
  dm::class_def definition;
  for (const stored_class& each : chosen(from, wanted)) {
    const char* text = nullptr;
    if (is_whole) {
      dm::read_class(each.node, 0, definition);
      text = from.writer.write(definition).data();
    }
    const int64_t id = &each - from.known.data() + 1;
    const dm::class_row row{id, each.key.c_str(), text_in(each.node, TAV_FLD_NAME), 0, text};
    if (!visitor.call(visitor.context, row)) break;
  }
  return true;
}

static bool give_tables(dm::store* store, int64_t, const dm::choice& wanted,
                        dm::visitor<dm::table_row> visitor, dm::problem&) {
  for (const stored_table& each : static_cast<listed_store*>(store)->tables) {
    const dm::table_row row{each.key.c_str(), each.name.c_str(), each.class_id};
    if (is_wanted(wanted, row.key) && !visitor.call(visitor.context, row)) break;
  }
  return true;
}

// The others are never called.
static constexpr dm::store_calls CALLS = [] {
  dm::store_calls calls{};
  calls.close = [](dm::store*) {};
  calls.fields = give_fields;
  calls.classes = give_classes;
  calls.tables = give_tables;
  return calls;
}();

// --- Reading the lists ---------------------------------------------------------------------------

template <class Call>
static void each_element(const tav_flist_t* list, uint32_t array, Call call) {
  uint32_t position = 0;
  int32_t id = 0;
  while (const tav_node* node = tav_node_next(tav_node_of(list), array, &position, &id)) call(node);
}

static void add_tables(listed_store& to) {
  dm::class_def definition;
  for (size_t i = 0; i < to.known.size(); ++i) {
    dm::read_class(to.known[i].node, 0, definition);
    for (std::string& table : dm::tables_of(definition)) {
      std::string key = dm::folded(table);
      to.tables.push_back({std::move(key), std::move(table), static_cast<int64_t>(i + 1)});
    }
  }
}

listed_store::listed_store(const tav_flist_t* field_list, const tav_flist_t* class_list)
    : dm::store{&CALLS} {
  each_element(field_list, TAV_FLD_FIELD, [&](const tav_node* node) {
    fields.push_back({text_in(node, TAV_FLD_FIELD_NAME), number_in(node, TAV_FLD_FIELD_NUM),
                      number_in(node, TAV_FLD_FIELD_TYPE), nullptr, 0, 0});
  });
  each_element(class_list, TAV_FLD_OBJ_DESC, [&](const tav_node* node) {
    known.push_back({dm::folded(text_in(node, TAV_FLD_NAME)), node});
  });
  std::ranges::stable_sort(known, {}, &stored_class::key);
  add_tables(*this);
}

const stored_class* listed_store::find(const char* name) const {
  const std::string key = dm::folded(name);
  const auto found = std::ranges::lower_bound(known, key, {}, &stored_class::key);
  return found != known.end() && found->key == key ? &*found : nullptr;
}

}  // namespace dict
