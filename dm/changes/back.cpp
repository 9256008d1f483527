#include "dm/changes/back.h"

#include <map>
#include <set>

#include "dd/database_number.h"
#include "dm/journal/hash.h"
#include "dm/journal/read.h"

namespace dm {

namespace {

// A thing that the deployment changed, or that others changed while it was at work.
struct touched {
  change_of what = change_of::FIELD;
  std::string name{};
  bool is_own = false;   // the deployment changed it
  bool is_amid = false;  // somebody else did before the deployment's last change of it
  std::string left{};    // digest of the state that the deployment left; "": it was gone
  int64_t own = 0;       // its last record that changed it
  int64_t other = 0;     // the last record of somebody else that changed it
};

struct undoing {
  store& from;
  const database_row& database;
  std::map<int64_t, journal_record> others{};  // of the database, behind its first
  std::set<int64_t> own{};                     // its records
  std::map<std::string, touched> things{};     // by thing_key
};

}  // namespace

static bool find_records(undoing& run, int64_t deployment, problem& why) {
  const std::string about = dd_database_text(run.database.number);
  const auto note = [&](const journal_record& record) {
    if (record.database != about) return true;
    if (record.deployment == deployment) {
      run.own.insert(record.number);
    } else {
      run.others[record.number] = record;
    }
    return true;
  };
  return walk_records(run.from, {deployment}, note, why);
}

static void note_own(touched& thing, int64_t record, const journal_change& change) {
  thing.is_amid = thing.is_amid || thing.other != 0;
  thing.is_own = true;
  thing.left = change.digest;
  thing.own = record;
}

static bool find_touched(undoing& run, problem& why) {
  const auto note = [&](int64_t record, const journal_change& change) {
    const bool is_own = run.own.count(record) != 0;
    if (!is_own && run.others.count(record) == 0) return true;
    touched& thing = run.things[thing_key(change.what, change.name)];
    thing.what = change.what;
    thing.name = change.name;
    if (is_own) note_own(thing, record, change);
    if (!is_own) thing.other = record;
    return true;
  };
  return run.own.empty() || walk_changes(run.from, {*run.own.begin()}, note, why);
}

// Whether the thing is as the deployment left it.
static bool is_as_left(const undoing& run, const touched& thing, bool& is_so, problem& why) {
  std::optional<std::string> state;
  is_so = !thing.is_amid;
  if (thing.is_amid) return true;
  if (!present_state(run.from, run.database.id, thing.what, thing.name, state, why)) return false;
  is_so = thing.left == (state ? hash_of(*state) : "");
  return true;
}

static refused_change lost(const undoing& run, const touched& thing) {
  if (thing.other == 0) {
    return {altered_thing(thing.what, thing.name, thing.own), thing.what, thing.name, {}};
  }
  const journal_record& by = run.others.at(thing.other);
  return {{TAV_ERR_CONFLICT, TAV_FLD_NAME, 0, 0,
           join({told_thing(thing.what, thing.name), " was changed ", told_by(by),
                 ", and that would be lost."})},
          thing.what,
          thing.name,
          by};
}

bool find_undone(store& store, const database_row& database, int64_t deployment,
                 std::vector<wanted_thing>& wanted, std::vector<refused_change>& refused,
                 problem& why) {
  undoing run{store, database};
  past before;
  if (!find_records(run, deployment, why) || !find_touched(run, why)) return false;
  if (run.own.empty()) return true;
  std::set<std::string> keys;
  for (const auto& [key, thing] : run.things) {
    bool is_so = false;
    if (!thing.is_own) continue;
    if (!is_as_left(run, thing, is_so, why)) return false;
    if (!is_so) refused.push_back(lost(run, thing));
    if (is_so) keys.insert(key);
  }
  if (!look_back(store, database, *run.own.begin() - 1, before, why, &keys)) return false;
  for (const std::string& key : keys) {
    const touched& thing = run.things.at(key);
    wanted.push_back({thing.what, thing.name, before[key].state});
  }
  return true;
}

}  // namespace dm
