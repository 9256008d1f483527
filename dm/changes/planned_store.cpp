#include "dm/changes/planned_store.h"

#include "dm/folded.h"

namespace dm {

static planned_store& planned_of(store* base) {
  return *static_cast<planned_store*>(base);
}

static bool is_wanted(const choice& wanted, const std::string& key) {
  return wanted.which != choice::NAMED || folded(wanted.name) == key;
}

// Gives the stored rows that the plan does not speak of. `goes_on` turns false where the visitor
// wants no more.
template <class Row, class Read, class IsPlanned>
static bool give_stored(Read read, IsPlanned is_planned, visitor<Row> visitor, bool& goes_on) {
  auto give = [&](const Row& row) {
    return is_planned(row) || (goes_on = visitor.call(visitor.context, row));
  };
  return read(visit<Row>(give));
}

static bool give_fields(store* base, int64_t database, const choice& wanted,
                        visitor<field_row> visitor, problem& why) {
  planned_store& at = planned_of(base);
  for (const auto& [key, field] : at.plan.fields) {
    if (!field.after || !is_wanted(wanted, key)) continue;
    if (!visitor.call(visitor.context, field.row)) return true;
  }
  bool goes_on = true;
  const auto read = [&](dm::visitor<field_row> rest) {
    return at.from.calls->fields(&at.from, database, wanted, rest, why);
  };
  const auto is_planned = [&](const field_row& row) {
    return at.plan.fields.count(folded(row.name)) != 0;
  };
  return give_stored<field_row>(read, is_planned, visitor, goes_on);
}

// The planned classes of a choice, in the order of their keys.
static std::pair<std::string, std::string> range_of(const choice& wanted) {
  const std::string key = wanted.name != nullptr ? folded(wanted.name) : "";
  if (wanted.which == choice::NAMED) return {key, key + std::string(1, '\0')};
  if (wanted.which != choice::BELOW && wanted.which != choice::KEYS_BELOW) return {"", "\xff"};
  const key_range below = keys_below(key);
  return {below.from, below.to};
}

static bool give_classes(store* base, int64_t database, const choice& wanted,
                         visitor<class_row> visitor, problem& why) {
  planned_store& at = planned_of(base);
  const auto [first, end] = range_of(wanted);
  auto next = at.plan.classes.lower_bound(first);
  const auto last = at.plan.classes.lower_bound(end);
  bool goes_on = true;
  const auto give_before = [&](const char* key) {
    for (; goes_on && next != last && (key == nullptr || next->first < key); ++next) {
      const planned_class& one = next->second;
      if (!one.after) continue;
      goes_on = visitor.call(
          visitor.context, {one.id, next->first.c_str(), one.name.c_str(), 0, one.after->c_str()});
    }
    return goes_on;
  };
  auto merge = [&](const class_row& row) {
    return give_before(row.key) &&
           (at.plan.classes.count(row.key) != 0 || (goes_on = visitor.call(visitor.context, row)));
  };
  if (!at.from.calls->classes(&at.from, database, wanted, visit<class_row>(merge), why)) {
    return false;
  }
  return give_before(nullptr), true;
}

static bool give_tables(store* base, int64_t database, const choice& wanted,
                        visitor<table_row> visitor, problem& why) {
  planned_store& at = planned_of(base);
  for (const auto& [key, table] : at.tables) {
    if (!is_wanted(wanted, key)) continue;
    if (!visitor.call(visitor.context, {key.c_str(), table.name.c_str(), table.class_id})) {
      return true;
    }
  }
  bool goes_on = true;
  const auto read = [&](dm::visitor<table_row> rest) {
    return at.from.calls->tables(&at.from, database, wanted, rest, why);
  };
  const auto is_planned = [&](const table_row& row) {
    return at.planned_ids.count(row.class_id) != 0;
  };
  return give_stored<table_row>(read, is_planned, visitor, goes_on);
}

// The others are never called.
static constexpr store_calls CALLS = [] {
  store_calls calls{};
  calls.close = [](store*) {};
  calls.fields = give_fields;
  calls.classes = give_classes;
  calls.tables = give_tables;
  return calls;
}();

planned_store::planned_store(store& under, const change_plan& changes)
    : store{&CALLS, under.look_up_cost}, from(under), plan(changes) {
  for (const auto& [key, one] : plan.classes) {
    planned_ids.insert(one.id);
    for (const std::string& table : one.tables) tables.try_emplace(folded(table), table, one.id);
  }
}

}  // namespace dm
