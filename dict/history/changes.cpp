#include "dict/history/changes.h"

#include <algorithm>
#include <tuple>

#include "dd/database_number.h"

namespace dict {

using states = std::map<std::string, std::string>;  // by dm::thing_key

// For more things than this all that is there is read at once (with a local file).
static constexpr size_t MANY = 500;

static bool read_all(reading& from, const dm::past& at, const changed_things& wanted, states& found,
                     dm::problem& why) {
  auto field = [&](const dm::field_row& row) {
    const std::string key = dm::thing_key(dm::change_of::FIELD, row.name);
    if (wanted.count(key) != 0) found[key] = dm::field_state(row);
    return true;
  };
  auto one = [&](const dm::class_row& row) {
    const std::string key = dm::thing_key(dm::change_of::CLASS, row.name);
    if (wanted.count(key) != 0) found[key] = row.definition;
    return true;
  };
  const int64_t id = from.database.id;
  return dm::past_fields(*from.store, id, at, dm::visit<dm::field_row>(field), why) &&
         dm::past_classes(*from.store, id, at, dm::visit<dm::class_row>(one), why);
}

static bool read_each(reading& from, const dm::past& at, const changed_things& wanted,
                      states& found, dm::problem& why) {
  for (const auto& [key, thing] : wanted) {
    std::optional<std::string> state;
    const auto past = at.find(key);
    if (past != at.end()) {
      state = past->second.state;
    } else if (!dm::present_state(*from.store, from.database.id, thing.what, thing.name, state,
                                  why)) {
      return false;
    }
    if (state) found[key] = *state;
  }
  return true;
}

// The states after a record; what was not there is not in them.
static bool states_after(reading& from, int64_t record, const changed_things& wanted, states& found,
                         dm::problem& why) {
  dm::past at;
  const bool many = wanted.size() > MANY / from.store->look_up_cost;
  return look_back_to(from, record, at, why) &&
         (many ? read_all : read_each)(from, at, wanted, found, why);
}

static bool find_changed(reading& from, int64_t record, changed_things& found, dm::problem& why) {
  const auto note = [&](int64_t, const dm::journal_change& change) {
    if (change.how == dm::change_how::FOUND) return true;
    found.try_emplace(dm::thing_key(change.what, change.name),
                      changed_thing{change.what, std::string(change.name)});
    return true;
  };
  return dm::walk_changes(*from.store, {record, record}, note, why);
}

static std::optional<std::string> state_in(const states& all, const std::string& key) {
  const auto found = all.find(key);
  return found != all.end() ? std::optional(found->second) : std::nullopt;
}

// Records of others may stand between two of a deployment: each counts by itself.
static bool add_record(reading& from, int64_t record, changed_things& all, dm::problem& why) {
  changed_things changed;
  states before, after;
  if (!find_changed(from, record, changed, why)) return false;
  if (changed.empty()) return true;
  if (!states_after(from, record - 1, changed, before, why) ||
      !states_after(from, record, changed, after, why)) {
    return false;
  }
  for (const auto& [key, found] : changed) {
    changed_thing& thing = all.try_emplace(key, found).first->second;
    if (thing.is_first) thing.before = state_in(before, key);
    thing.is_first = false;
    thing.after = state_in(after, key);
  }
  return true;
}

// Where a difference stands: fields first, what is missing behind the rest.
using difference_place = std::tuple<bool, bool, std::string>;

static difference_place place_of(const difference& d) {
  const bool is_class = std::string_view(d.what) == "class";
  return {is_class, d.kind == change::MISSING,
          dm::thing_key(is_class ? dm::change_of::CLASS : dm::change_of::FIELD, d.name)};
}

static void sort(std::vector<difference>& found) {
  std::vector<std::pair<difference_place, size_t>> order;
  for (size_t i = 0; i < found.size(); ++i) order.emplace_back(place_of(found[i]), i);
  std::sort(order.begin(), order.end());
  std::vector<difference> sorted;
  for (const auto& [place, i] : order) sorted.push_back(std::move(found[i]));
  found = std::move(sorted);
}

// What has one side alone is told by its name and type. Predefined fields never count.
static bool add_one_sided(const changed_thing& thing, std::vector<difference>& found,
                          dm::problem& why) {
  const change kind = thing.after ? change::NEW : change::MISSING;
  if (thing.what == dm::change_of::CLASS)
    return found.push_back({kind, "class", "", thing.name}), true;
  std::string state = thing.after ? *thing.after : *thing.before;
  dm::field_row row{};
  if (!dm::read_field_state(state, row)) return dm::damaged_record(0, why);
  if ((row.flags & DD_FIELD_PREDEFINED) != 0) return true;
  const char* keyword = dd_is_field_type(row.type) ? dd_type_keyword(row.type) : nullptr;
  found.push_back({kind, "field", keyword != nullptr ? keyword : "", row.name});
  return true;
}

bool compare_things(const changed_things& all, std::vector<difference>& found, dm::problem& why) {
  definitions before, after;
  definitions_maker make_before(before), make_after(after);
  for (const auto& [key, thing] : all) {
    const bool is_added = thing.before && thing.after
                              ? make_before.add(thing.what, thing.name, *thing.before, why) &&
                                    make_after.add(thing.what, thing.name, *thing.after, why)
                              : (!thing.before && !thing.after) || add_one_sided(thing, found, why);
    if (!is_added) return false;
  }
  progress shown("comparing");
  if (!make_before.finish(why) || !make_after.finish(why) ||
      !compare(before, after, {false, true, shown}, found, why)) {
    return false;
  }
  sort(found);
  return true;
}

bool find_changes(reading& from, const deployment& one, std::vector<database_changes>& result,
                  dm::problem& why) {
  std::map<std::string, changed_things> by_database;
  for (const deployment_record& record : one.records) {
    uint64_t number = 0;
    if (record.database.empty()) continue;
    if (!dd_read_database(record.database.c_str(), number)) {
      return dm::damaged_record(record.number, why);
    }
    if (!find_past_database(*from.store, number, from.database, why) ||
        !add_record(from, record.number, by_database[record.database], why)) {
      return false;
    }
  }
  for (const auto& [database, things] : by_database) {
    if (things.empty()) continue;
    if (!compare_things(things, result.emplace_back().found, why)) return false;
    result.back().database = database;
  }
  return true;
}

}  // namespace dict
