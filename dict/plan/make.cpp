// Makes a plan of judged files: the definitions of what changes, and digests of what they touch.
#include "dict/history/telling.h"
#include "dict/plan/present.h"
#include "dm/folded.h"
#include "dm/journal/hash.h"
#include "dm/journal/read.h"
#include "dm/journal/who.h"

namespace dict {

namespace {

// What a plan looks at, while it is gathered.
struct looking {
  dm::store& store;
  int64_t database;
  present_digests present;
  plan& made;
  dm::problem& why;
  dm::key_set seen{};  // of things, by dm::thing_key
};

}  // namespace

digests_of_things results_of(const dm::deployment_result& result) {
  digests_of_things results;
  for (const dm::outcome& one : result.changes) {
    auto& to = one.what == dm::change_of::FIELD ? results.fields : results.classes;
    to[one.name] = dm::hash_of(one.after);
  }
  return results;
}

// --- What is looked at ---------------------------------------------------------------------------

// Notes the thing as it is, unless it is noted already.
static bool look_at(looking& in, dm::change_of what, const std::string& name) {
  if (!in.seen.insert(dm::thing_key(what, name)).second) return true;
  auto& to = what == dm::change_of::FIELD ? in.made.known.fields : in.made.known.classes;
  return in.present.find(what, name, to[name], in.why);
}

// A new field needs its number.
static bool look_at_field(looking& in, const dm::outcome& field) {
  if (!field.before) in.made.numbers[std::to_string(field.number)] = ABSENT;
  return look_at(in, dm::change_of::FIELD, field.name);
}

static bool look_above(looking& in, const std::string& name) {
  for (size_t cut = name.find('/', 1); cut != name.npos; cut = name.find('/', cut + 1)) {
    if (!look_at(in, dm::change_of::CLASS, name.substr(0, cut))) return false;
  }
  return true;
}

// An array or substruct must not stand in a subclass, too: so there may be no others either.
static bool look_below(looking& in, const dm::outcome& storable) {
  if (!storable.has_containers) return true;
  in.made.complete.push_back(storable.name);
  auto note = [&](const dm::class_row& row) {
    if (in.seen.insert(dm::thing_key(dm::change_of::CLASS, row.name)).second)
      in.made.known.classes[row.name] = dm::hash_of(row.definition);
    return true;
  };
  const dm::choice below{dm::choice::BELOW, storable.name.c_str()};
  return in.store.calls->classes(&in.store, in.database, below, dm::visit<dm::class_row>(note),
                                 in.why);
}

// Tables that no class has yet. The others are those of classes that the plan changes.
static bool look_at_tables(looking& in, const dm::outcome& storable) {
  for (const std::string& table : storable.tables) {
    bool is_free = true;
    auto note = [&](const dm::table_row&) { return is_free = false; };
    const dm::choice named{dm::choice::NAMED, table.c_str()};
    if (!in.store.calls->tables(&in.store, in.database, named, dm::visit<dm::table_row>(note),
                                in.why))
      return false;
    if (is_free) in.made.tables[table] = ABSENT;
  }
  return true;
}

static bool look_at_class(looking& in, const dm::outcome& storable) {
  if (!look_at(in, dm::change_of::CLASS, storable.name) || !look_above(in, storable.name) ||
      !look_below(in, storable) || !look_at_tables(in, storable))
    return false;
  for (const std::string& field : storable.used_fields) {
    if (!look_at(in, dm::change_of::FIELD, field)) return false;
  }
  return true;
}

// --- The plan ------------------------------------------------------------------------------------

// Whether the definitions, read again, come to the same as the files. What the data manager would
// store is compared, so that nothing that was lost on the way is missed.
static bool means_the_same(snapshot& on, const judged& files, const plan& made, dm::problem& why) {
  judged again;
  const bool is_read = read_again(made.definitions, files, again.sent);
  const bool is_taken = is_read && try_lists(on, again, why);
  const digests_of_things results = results_of(again.result);
  if (is_taken && results.fields == made.results.fields && results.classes == made.results.classes)
    return true;
  if (dm::is_of_the_system(why)) return false;
  why.sentence =
      "The definitions of what changes mean something else without the rest of these files; deploy "
      "them with 'replace'.";
  return false;
}

// How many things the changes touch, about.
static size_t things_of(const dm::deployment_result& result) {
  size_t things = result.changes.size();
  for (const dm::outcome& one : result.changes) things += one.used_fields.size();
  return things;
}

static void describe(snapshot& on, plan& made) {
  dm::journal_record who;
  dm::fill_who(who);
  made.name = on.session.store->calls->name(on.session.store.get());
  made.identity = on.identity;
  made.database = on.database.number;
  made.record = on.head.number;
  made.hash = on.head.hash;
  made.time = dm::time_now();
  made.user = who_of(who);
}

bool make_plan(snapshot& on, const std::vector<lint::source>& sources, const judged& files,
               plan& made, dm::problem& why) {
  describe(on, made);
  made.results = results_of(files.result);
  made.definitions = changed_definitions(sources, files);
  dm::store& store = *on.session.store;
  const present_digests present(store, on.database.id, things_of(files.result));
  looking in{store, on.database.id, present, made, why};
  for (const dm::outcome& one : files.result.changes) {
    const bool is_field = one.what == dm::change_of::FIELD;
    if (!(is_field ? look_at_field : look_at_class)(in, one)) return false;
  }
  return files.result.changes.empty() || means_the_same(on, files, made, why);
}

}  // namespace dict
