// The journal is walked once, from its newest record, for the past of all fields and classes.
#include <algorithm>

#include "dd/database_number.h"
#include "dict/history/blame.h"
#include "dict/history/changes.h"
#include "dict/history/renames.h"
#include "dict/site/site.h"
#include "dm/open.h"

namespace dict {

// How many deployments are told with what they changed.
static constexpr size_t MOST_CHANGES = 50;

namespace {

// A field or class on the way back.
struct tracked_thing {
  std::string name;
  std::optional<std::string> state{};    // where the way back has come to
  std::optional<taken_apart> present{};  // where more than one deployment made it what it is
  bool is_settled = true;                // who made what of it is known, or it is not there
  bool was_changed_since = false;        // the way back has passed a change of it
};

// A name that a renamed thing has in the records from one to another.
struct told_name {
  int64_t from, to;
  std::string owner;  // the thing's key today
};

struct way_back {
  site_past& result;
  std::unordered_map<std::string, std::vector<told_name>> names{};  // by key, of renamed things
  std::map<int64_t, int64_t> deployments{};                         // of records about the database
  std::map<int64_t, changed_things> changed{};  // by deployment, of those to be told
  std::unordered_map<std::string, tracked_thing> things{};
};

}  // namespace

bool changes_definitions(const deployment& one) {
  return std::ranges::any_of(
      one.records, [](const deployment_record& record) { return dm::is_deployment(record.kind); });
}

static bool find_begin(dm::store& store, site_past& past, dm::problem& why) {
  const auto look = [&](const dm::journal_record& first) {
    if (first.number > 1) past.begin = first.number;
    return false;
  };
  return dm::walk_records(store, {}, look, why);
}

static bool find_records(reading& from, int64_t last, way_back& way, dm::problem& why) {
  deployment_choice wanted;
  wanted.database = dd_database_text(from.database.number);
  std::vector<deployment>& found = way.result.deployments;
  if (!find_deployments(*from.store, wanted, found, why)) return false;
  std::erase_if(found, [&](const deployment& one) { return one.number > last; });
  for (const deployment& one : found) {
    for (const deployment_record& record : one.records) {
      if (record.database == wanted.database) way.deployments[record.number] = one.number;
    }
    const bool is_told = way.changed.size() < MOST_CHANGES && changes_definitions(one);
    if (is_told) way.changed[one.number];
  }
  return true;
}

// Reads what is there at the end of the way: as definitions, and as states to go back from.
static bool read_present(reading& from, const dm::past& at, definitions& all, way_back& way,
                         dm::problem& why) {
  definitions_maker maker(all);
  bool is_added = true;
  const auto track = [&](dm::change_of what, const char* name, std::string state) {
    way.things[dm::thing_key(what, name)] = {name, std::move(state), {}, false};
  };
  auto field = [&](const dm::field_row& row) {
    track(dm::change_of::FIELD, row.name, dm::field_state(row));
    return is_added = maker.add(row, why);
  };
  auto one = [&](const dm::class_row& row) {
    track(dm::change_of::CLASS, row.name, row.definition);
    return is_added = maker.add(row, why);
  };
  dm::store& store = *from.store;
  const int64_t id = from.database.id;
  return dm::past_fields(store, id, at, dm::visit<dm::field_row>(field), why) && is_added &&
         dm::past_classes(store, id, at, dm::visit<dm::class_row>(one), why) && is_added &&
         maker.finish(why);
}

// --- Renames -------------------------------------------------------------------------------------

// What came by a change of this name may have come from another name.
static bool find_brought(dm::store& store, const way_back& way, std::set<std::string>& brought,
                         dm::problem& why) {
  const auto note = [&](int64_t, const dm::journal_change& change) {
    const std::string key = dm::thing_key(change.what, change.name);
    const bool is_new = change.how == dm::change_how::ADDED && way.things.count(key) != 0;
    if (is_new) brought.insert(key);
    return true;
  };
  for (const deployment& one : way.result.deployments) {
    for (const deployment_record& record : one.records) {
      const bool may_rename = record.kind == dm::journal_kind::CHANGE;
      const dm::journal_range range{record.number, record.number};
      if (may_rename && !dm::walk_changes(store, range, note, why)) return false;
    }
  }
  return true;
}

static void note_names(way_back& way, const std::string& owner, dm::change_of what,
                       const std::vector<past_name>& names) {
  for (const past_name& name : names) {
    const std::string key = dm::thing_key(what, name.key);
    way.names[key].push_back({name.from, name.to, owner});
    const auto since = way.deployments.find(names.front().from);
    const bool is_left = way.things.count(key) == 0 && since != way.deployments.end();
    if (is_left) way.result.left.push_back({key, names.front().key, since->second});
  }
}

static bool find_renames(reading& from, way_back& way, dm::problem& why) {
  std::set<std::string> brought;
  if (!find_brought(*from.store, way, brought, why)) return false;
  std::vector<named_thing> things;
  for (const std::string& key : brought) {
    const bool is_class = key[0] == static_cast<char>(dm::change_of::CLASS);
    things.push_back({is_class ? dm::change_of::CLASS : dm::change_of::FIELD, key.substr(1)});
  }
  if (things.empty()) return true;
  if (!find_names(*from.store, things, why)) return false;
  for (const named_thing& thing : things) {
    const auto names = thing.names.in(dd_database_text(from.database.number));
    const std::string key = dm::thing_key(thing.what, thing.name);
    if (names.size() > 1) note_names(way, key, thing.what, names);
  }
  return true;
}

// The thing of today whose past a change of that name is; empty where it is that of one which had
// the name of a renamed thing before it.
static std::string owner_of(const way_back& way, int64_t record, const std::string& key) {
  const auto found = way.names.find(key);
  if (found == way.names.end()) return key;
  bool is_taken = false;
  for (const told_name& name : found->second) {
    if (name.from <= record && record <= name.to) return name.owner;
    is_taken = is_taken || name.owner == key;
  }
  return is_taken ? "" : key;
}

// --- A change ------------------------------------------------------------------------------------

// Takes the state after the change over.
static void note_change(changed_things& all, const dm::journal_change& change,
                        std::optional<std::string> after,
                        const std::optional<std::string>& before) {
  if (change.how == dm::change_how::FOUND) return;
  changed_thing& one =
      all.try_emplace(
             dm::thing_key(change.what, change.name),
             changed_thing{change.what, std::string(change.name), true, {}, std::move(after)})
          .first->second;
  one.before = before;
}

// What was never changed has all of its parts from the change that brought it.
static bool settle_parts(const dm::journal_change& change, int64_t deployment, tracked_thing& thing,
                         const std::optional<std::string>& before, thing_past& past,
                         dm::problem& why) {
  const bool is_found = change.how == dm::change_how::FOUND;
  thing.is_settled = !dm::was_there(change);
  if (thing.is_settled && !thing.present) {
    past.blame = {is_found ? -deployment : deployment};
    return true;
  }
  taken_apart parts;
  if (!thing.present &&
      !take_apart(change.what, thing.name, *thing.state, thing.present.emplace(), why)) {
    return false;
  }
  if (before && !take_apart(change.what, thing.name, *before, parts, why)) return false;
  dm::journal_record by;
  by.number = by.deployment = deployment;
  settle(*thing.present, parts.values, by, is_found);
  return true;
}

// The half of a rename with the new name: the other half tells what was before.
static bool is_new_name(const way_back& way, int64_t record, const std::string& key) {
  const auto found = way.names.find(key);
  return found != way.names.end() && std::ranges::any_of(found->second, [&](const told_name& name) {
           return name.from == record;
         });
}

// Puts the change into the past of the thing that had the name.
static bool tell_change(way_back& way, int64_t record, const dm::journal_change& change,
                        const std::optional<std::string>& before, dm::problem& why) {
  const std::string key = dm::thing_key(change.what, change.name);
  const std::string owner = owner_of(way, record, key);
  if (owner.empty()) return true;
  const int64_t deployment = way.deployments.at(record);
  thing_past& past = way.result.things[owner];
  if (past.deployments.empty() || past.deployments.back() != deployment) {
    past.deployments.push_back(deployment);
  }
  tracked_thing& thing = way.things.at(owner);
  if (is_new_name(way, record, key)) {
    return thing.present ||
           take_apart(change.what, thing.name, *thing.state, thing.present.emplace(), why);
  }
  return thing.is_settled || settle_parts(change, deployment, thing, before, past, why);
}

static bool go_back(way_back& way, int64_t record, const dm::journal_change& change,
                    dm::problem& why) {
  const auto deployment = way.deployments.find(record);
  if (deployment == way.deployments.end()) return true;  // of another database
  const std::string key = dm::thing_key(change.what, change.name);
  tracked_thing& thing =
      way.things.try_emplace(key, tracked_thing{std::string(change.name)}).first->second;
  std::optional<std::string> before;
  const std::string* after = thing.state ? &*thing.state : nullptr;
  if (!dm::must_have_left(record, change, after, thing.was_changed_since, why)) return false;
  thing.was_changed_since = true;
  if (dm::was_there(change) &&
      !dm::state_before(change, after != nullptr ? *after : "", before.emplace())) {
    return dm::damaged_record(record, why);
  }
  if (!tell_change(way, record, change, before, why)) return false;
  const auto told = way.changed.find(deployment->second);
  if (told != way.changed.end()) note_change(told->second, change, std::move(thing.state), before);
  thing.state = std::move(before);
  return true;
}

// --- All -----------------------------------------------------------------------------------------

static void take_blame(way_back& way) {
  for (auto& [key, thing] : way.things) {
    if (!thing.present) continue;
    thing_past& past = way.result.things[key];
    for (const blamed_part& part : thing.present->parts) {
      past.blame.push_back(part.is_found ? -part.by.deployment : part.by.deployment);
    }
  }
}

static bool compare_all(way_back& way, dm::problem& why) {
  for (const auto& [deployment, things] : way.changed) {
    if (!compare_things(things, way.result.changes[deployment], why)) return false;
  }
  return true;
}

bool read_past(reading& from, int64_t record, site_source& result, dm::problem& why) {
  way_back way{result.past};
  dm::past at;
  const bool is_past = record != std::numeric_limits<int64_t>::max();
  result.has_past = dm::has_journal(*from.store);
  if (is_past && !look_back_to(from, record, at, why)) return false;
  if (!read_present(from, at, result.all, way, why)) return false;
  if (!result.has_past) return true;
  if (!find_begin(*from.store, result.past, why) || !find_records(from, record, way, why) ||
      !find_renames(from, way, why))
    return false;
  bool is_sound = true;
  const auto back = [&](int64_t number, const dm::journal_change& change) {
    return is_sound = go_back(way, number, change, why);
  };
  if (!dm::walk_changes(*from.store, {0, record, true}, back, why) || !is_sound) return false;
  take_blame(way);
  return compare_all(way, why);
}

}  // namespace dict
