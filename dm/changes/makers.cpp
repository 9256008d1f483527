// Who made what stands against a change.
#include <algorithm>

#include "dd/database_number.h"
#include "dd/fold.h"
#include "dm/changes/back.h"
#include "dm/class_def.h"
#include "dm/class_outline.h"
#include "dm/journal/read.h"

namespace dm {

namespace {

// A use on the way back to where it was made.
struct tracked_use {
  refused_change* refused;
  std::optional<std::string> state{};  // of the user, where the way back has come to
};

struct makers {
  std::map<int64_t, journal_record> records{};     // of the database
  std::multimap<std::string, tracked_use> uses{};  // by the user's key
  outline_reader reader{};
};

}  // namespace

static bool is_class(const std::string& name) {
  return name.rfind('/', 0) == 0;
}

static bool track(store& store, int64_t database, refused_change& refused, makers& all,
                  problem& why) {
  if (refused.user.empty()) return true;
  const auto what = is_class(refused.user) ? change_of::CLASS : change_of::FIELD;
  tracked_use use{&refused};
  if (!present_state(store, database, what, refused.user, use.state, why)) return false;
  if (use.state.has_value() != refused.is_missed)
    all.uses.emplace(thing_key(what, refused.user), std::move(use));
  return true;
}

static bool is_named(std::string_view name, const std::string& wanted) {
  return dd_equal(std::string(name).c_str(), wanted.c_str());
}

static bool has_table(const class_outline& outline, const std::string& table) {
  return is_named(outline.table, table) ||
         std::ranges::any_of(outline.entries, [&](const outline_entry& entry) {
           return is_named(table_of(entry), table);
         });
}

static bool has_entry(const class_outline& outline, const std::string& name) {
  return std::ranges::any_of(
      outline.entries, [&](const outline_entry& entry) { return is_named(entry.name, name); });
}

static bool has_container(const class_outline& outline, const std::string& name) {
  return std::ranges::any_of(outline.entries, [&](const outline_entry& entry) {
    return entry.parent == NO_PARENT && is_named(entry.name, name);
  });
}

// Whether a class of that state is in the way: it uses the field, or has the same table or
// container. What is in the way by itself always is.
static bool is_use(makers& all, const tracked_use& use, const std::string& state, problem& why) {
  const refused_change& refused = *use.refused;
  const std::string& shared = refused.shared;
  const bool is_whole = shared.empty() && refused.what != change_of::FIELD;
  if (is_whole || !is_class(refused.user)) return true;
  const class_row row{0, nullptr, refused.user.c_str(), 0, state.c_str()};
  const class_outline* outline = all.reader.read(row, why);
  if (outline == nullptr) return false;
  if (shared.empty()) return has_entry(*outline, refused.name);
  const bool is_table = refused.why.field == TAV_FLD_SQL_TABLE;
  return is_table ? has_table(*outline, shared) : has_container(*outline, shared);
}

static void tell_maker(refused_change& refused, const journal_record& record) {
  std::string& sentence = refused.why.sentence;
  refused.by = record;
  sentence.pop_back();  // the full stop
  sentence.append(" since ").append(told_by(record).substr(3)).append(".");
}

// Takes the change back, unless it made the use.
static bool go_back(makers& all, tracked_use& use, int64_t record, const journal_change& change,
                    problem& why) {
  std::string before;
  if (use.refused->by.number != 0) return true;
  if (use.refused->is_missed && change.how == change_how::DELETED)
    tell_maker(*use.refused, all.records.at(record));
  if (!use.state) return true;
  if (!has_left(change, &*use.state)) return use.state.reset(), true;
  const bool is_there = was_there(change) && state_before(change, *use.state, before);
  const bool is_older = is_there && is_use(all, use, before, why);
  if (failed(why)) return false;
  if (!is_older) tell_maker(*use.refused, all.records.at(record));
  use.state = std::move(before);
  return true;
}

static bool find_records(store& store, uint64_t database, int64_t deployment, makers& all,
                         problem& why) {
  const std::string about = dd_database_text(database);
  const auto note = [&](const journal_record& record) {
    if (record.database == about) all.records[record.number] = record;
    return true;
  };
  return walk_records(store, {deployment + 1}, note, why);
}

bool find_makers(store& store, const database_row& database, int64_t deployment,
                 std::vector<refused_change>& refused, problem& why) {
  makers all;
  for (refused_change& each : refused) {
    if (!track(store, database.id, each, all, why)) return false;
  }
  if (all.uses.empty()) return true;
  const auto back = [&](int64_t record, const journal_change& change) {
    const auto [first, last] = all.uses.equal_range(thing_key(change.what, change.name));
    if (first == last || all.records.count(record) == 0) return true;
    for (auto use = first; use != last; ++use) {
      if (!go_back(all, use->second, record, change, why)) return false;
    }
    return true;
  };
  const journal_range newest_first{deployment + 1, std::numeric_limits<int64_t>::max(), true};
  return find_records(store, database.number, deployment, all, why) &&
         walk_changes(store, newest_first, back, why) && !failed(why);
}

}  // namespace dm
