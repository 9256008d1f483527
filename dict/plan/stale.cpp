#include "dict/plan/stale.h"

#include "dd/database_number.h"
#include "dict/history/history.h"
#include "dict/history/moments.h"
#include "dict/history/renames.h"
#include "dict/history/telling.h"
#include "dict/plan/present.h"
#include "dm/folded.h"
#include "dm/journal/read.h"

namespace dict {

namespace {

// A thing that is not as the plan saw it.
struct stale_thing {
  dm::change_of what;
  std::string name;
  std::string verb;      // "was changed"
  std::string behind{};  // what more there is to say of it
};

struct search {
  dm::store& store;
  const dm::database_row& database;
  const plan& made;
  dm::problem& why;
  std::vector<stale_thing> found{};
};

}  // namespace

// --- What is different ---------------------------------------------------------------------------

static constexpr char REMOVED[] = "was removed";

static std::string verb_of(const std::string& before, const std::string& now) {
  return before == ABSENT ? "was added" : now == ABSENT ? REMOVED : "was changed";
}

static bool compare_things(search& in, present_digests& present, dm::change_of what,
                           const digests& known) {
  for (const auto& [name, digest] : known) {
    std::string now;
    if (!present.find(what, name, now, in.why)) return false;
    if (now != digest) in.found.push_back({what, name, verb_of(digest, now)});
  }
  return true;
}

static dm::key_set keys_of(const digests& all) {
  dm::key_set keys;
  for (const auto& [name, unused] : all) keys.insert(dm::folded(name));
  return keys;
}

// A field of the plan's own name is told by its name.
static bool compare_numbers(search& in) {
  const dm::key_set own = keys_of(in.made.known.fields);
  for (const auto& [number, unused] : in.made.numbers) {
    auto note = [&, taken = number](const dm::field_row& row) {
      if (own.count(dm::folded(row.name)) == 0)
        in.found.push_back(
            {dm::change_of::FIELD, row.name, "was added", " with the number " + taken});
      return true;
    };
    const dm::choice numbered{dm::choice::NUMBERED, nullptr, std::atoi(number.c_str())};
    if (!in.store.calls->fields(&in.store, in.database.id, numbered, dm::visit<dm::field_row>(note),
                                in.why))
      return false;
  }
  return true;
}

// The class that has the row id; "" where there is none.
static bool find_class(search& in, int64_t id, std::string& name) {
  auto note = [&](const dm::class_row& row) {
    if (row.id == id) name = row.name;
    return row.id != id;
  };
  return in.store.calls->classes(&in.store, in.database.id, {dm::choice::KEYS},
                                 dm::visit<dm::class_row>(note), in.why);
}

static bool compare_tables(search& in) {
  for (const auto& [table, unused] : in.made.tables) {
    int64_t owner = 0;
    auto note = [&](const dm::table_row& row) { return owner = row.class_id, true; };
    const dm::choice named{dm::choice::NAMED, table.c_str()};
    if (!in.store.calls->tables(&in.store, in.database.id, named, dm::visit<dm::table_row>(note),
                                in.why))
      return false;
    if (owner == 0) continue;
    std::string name;
    if (!find_class(in, owner, name)) return false;
    in.found.push_back({dm::change_of::CLASS, name, "was given table " + dm::quoted(table)});
  }
  return true;
}

static bool compare_below(search& in) {
  dm::key_set known = keys_of(in.made.known.classes);
  for (const std::string& upper : in.made.complete) {
    auto note = [&](const dm::class_row& row) {
      if (known.insert(dm::folded(row.name)).second)
        in.found.push_back(
            {dm::change_of::CLASS, row.name, "was added", " below " + dm::quoted(upper)});
      return true;
    };
    const dm::choice below{dm::choice::KEYS_BELOW, upper.c_str()};
    if (!in.store.calls->classes(&in.store, in.database.id, below, dm::visit<dm::class_row>(note),
                                 in.why))
      return false;
  }
  return true;
}

static size_t count(const digests_of_things& things) {
  return things.fields.size() + things.classes.size();
}

static bool compare_all(search& in) {
  present_digests present(in.store, in.database.id, count(in.made.known));
  return compare_things(in, present, dm::change_of::FIELD, in.made.known.fields) &&
         compare_things(in, present, dm::change_of::CLASS, in.made.known.classes) &&
         compare_numbers(in) && compare_tables(in) && compare_below(in);
}

// --- Who changed it ------------------------------------------------------------------------------

using changers = std::map<std::string, dm::journal_record>;  // the last record of each thing

static bool find_changers(search& in, changers& by) {
  dm::journal_range range;
  range.from = in.made.record + 1;
  std::map<int64_t, dm::journal_record> records;
  const std::string database = dd_database_text(in.database.number);
  const auto note_record = [&](const dm::journal_record& record) {
    if (record.database == database) records[record.number] = record;
    return true;
  };
  const auto note_change = [&](int64_t number, const dm::journal_change& change) {
    const auto record = records.find(number);
    if (record != records.end()) by[dm::thing_key(change.what, change.name)] = record->second;
    return true;
  };
  return dm::walk_records(in.store, range, note_record, in.why) &&
         dm::walk_changes(in.store, range, note_change, in.why);
}

static std::string event_of(const stale_thing& thing, const dm::journal_record* record) {
  const std::string name =
      record != nullptr && thing.verb == REMOVED ? name_after(*record, thing.what, thing.name) : "";
  return name.empty() ? thing.verb + thing.behind : dm::join({"was renamed to ", dm::quoted(name)});
}

static dm::refused_change told(const stale_thing& thing, const changers& by) {
  dm::problem why;
  dm::refused_change refused{why, thing.what, thing.name, {}};
  const char* what = thing.what == dm::change_of::FIELD ? "Field " : "Class ";
  const auto found = by.find(dm::thing_key(thing.what, thing.name));
  const bool is_known = found != by.end();
  const std::string event = event_of(thing, is_known ? &found->second : nullptr);
  const std::string sentence = dm::join({what, dm::quoted(thing.name), " ", event});
  if (!is_known) {
    refused.why.sentence = sentence + "; the journal no longer tells by whom.";
    return refused;
  }
  refused.by = found->second;
  refused.why.sentence =
      sentence + dm::join({" by deployment ", std::to_string(refused.by.deployment), " at ",
                           local_time(refused.by.time), " by ", who_of(refused.by), "."});
  return refused;
}

static bool tell(search& in, std::vector<dm::refused_change>& stale) {
  changers by;
  if (!in.found.empty() && !find_changers(in, by)) return false;
  for (const stale_thing& thing : in.found) stale.push_back(told(thing, by));
  return true;
}

// --- What is done already ------------------------------------------------------------------------

static bool compare_results(search& in) {
  present_digests present(in.store, in.database.id, count(in.made.results));
  return compare_things(in, present, dm::change_of::FIELD, in.made.results.fields) &&
         compare_things(in, present, dm::change_of::CLASS, in.made.results.classes);
}

static bool find_application(dm::store& store, const plan& made, int64_t& deployment,
                             dm::problem& why) {
  dm::journal_range range;
  range.from = made.record + 1;
  const auto look = [&](const dm::journal_record& record) {
    const bool is_it = record.kind == dm::journal_kind::APPLY &&
                       record.detail.find("\"" + made.digest + "\"") != std::string::npos;
    if (is_it) deployment = record.deployment;
    return true;
  };
  return dm::walk_records(store, range, look, why);
}

// A plan that was applied and taken back is not deployed again: who took it back meant that.
bool find_standing(dm::store& store, const dm::database_row& database, const plan& made,
                   standing& result, dm::problem& why) {
  search results{store, database, made, why};
  result = {};
  if (!compare_results(results) || !find_application(store, made, result.application, why))
    return false;
  result.is_done = results.found.empty();
  if (result.is_done) return true;
  if (result.application != 0) return tell(results, result.stale);
  search known{store, database, made, why};
  return compare_all(known) && tell(known, result.stale);
}

// --- Which dictionary it is ----------------------------------------------------------------------

static bool refuse(std::string sentence, dm::problem& why) {
  why.sentence = std::move(sentence);
  return false;
}

// Where only the identities tell the two apart, they are told.
static bool is_another(const plan& made, const std::string& name, const std::string& identity,
                       dm::problem& why) {
  const std::string planned = dm::quoted(made.name);
  const bool is_alike = planned == name;
  return refuse(
      dm::join({"The plan was made for dictionary ", planned,
                is_alike ? " with identity " + made.identity : "",
                ", and this is another one, or one that was made anew from a backup: ", name,
                is_alike ? " with identity " + identity : "", ". Make the plan anew."}),
      why);
}

// The record that was the last when the plan was made, or those behind it where it was forgotten.
static bool has_record(dm::store& store, const plan& made, bool& found, dm::problem& why) {
  int64_t oldest = 0;
  const auto note = [&](const dm::journal_record& record) {
    oldest = record.number;
    found = record.number == made.record && record.hash == made.hash;
    return false;
  };
  const bool is_read = dm::walk_records(store, {made.record}, note, why);
  found = found || oldest > made.record;
  return is_read;
}

bool is_of(const plan& made, snapshot& on, dm::problem& why) {
  dm::store& store = *on.session.store;
  const std::string name = dm::quoted(store.calls->name(&store));
  if (!must_have_journal(store, why)) return false;
  if (made.identity != on.identity) return is_another(made, name, on.identity, why);
  bool found = false;
  if (!has_record(store, made, found, why)) return false;
  return found ||
         refuse(dm::join({"The journal of dictionary ", name, " does not hold record ",
                          std::to_string(made.record),
                          " as the plan saw it: an older copy was put in its place. Make the plan "
                          "anew."}),
                why);
}

}  // namespace dict
