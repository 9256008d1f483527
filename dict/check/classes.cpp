// The classes of a database, and the tables that dd_tables gives them.
#include <algorithm>
#include <cstring>
#include <map>

#include "dict/check/check.h"
#include "dm/folded.h"
#include "dm/rules/class_rules.h"

namespace dict {

namespace {

// A copy of a row. All are copied before the first is checked, because the rules need the others.
struct kept_class {
  int64_t id;
  std::string key, name;
  int64_t stamp;
  std::string definition;
};

struct class_check {
  checker& check;
  const dm::database_row& database;
  dm::class_world world;
  dm::class_reader reader{};
  std::vector<kept_class> classes{};
  std::vector<dm::class_row> rows{};             // the same; texts are borrowed from `classes`
  std::multimap<int64_t, std::string> tables{};  // folded names by class
};

}  // namespace

static void fault(class_check& run, const char* kind, const std::string& name,
                  std::string_view rest) {
  tell(run.check, run.database, dm::join({kind, dm::quoted(name), rest}));
}

static bool keep_rows(class_check& run) {
  dm::store& store = run.check.store;
  auto note_class = [&](const dm::class_row& row) {
    step(run.check.shown);
    run.classes.push_back({row.id, row.key, row.name, row.stamp, row.definition});
    return true;
  };
  auto table = [&](const dm::table_row& row) {
    step(run.check.shown);
    if (dm::folded(row.name) != row.key) fault(run, "Table ", row.name, " has a wrong key.");
    return run.tables.emplace(row.class_id, row.key), true;
  };
  return store.calls->classes(&store, run.database.id, {}, dm::visit<dm::class_row>(note_class),
                              run.check.why) &&
         store.calls->tables(&store, run.database.id, {}, dm::visit<dm::table_row>(table),
                             run.check.why);
}

// Removes the tables that dd_tables gives the class from run.tables. Whether they are `own`, those
// of its definition.
static bool take_tables(class_check& run, int64_t id, const std::vector<std::string>& own) {
  std::vector<std::string> wanted;
  for (const std::string& table : own) wanted.push_back(dm::folded(table));
  std::sort(wanted.begin(), wanted.end());
  std::vector<std::string> present;
  const auto [first, last] = run.tables.equal_range(id);
  for (auto at = first; at != last; ++at) present.push_back(at->second);
  run.tables.erase(first, last);
  std::sort(present.begin(), present.end());
  return wanted == present;
}

// Whether the definition keeps all rules. Gives the tables that it names.
static bool check_definition(class_check& run, const dm::class_row& row,
                             std::vector<std::string>& tables) {
  dd_flist list;
  dm::class_def definition;
  dm::problem damaged;
  if (!dm::load_class(run.reader, row, list, definition, damaged)) {
    return tell(run.check, run.database, damaged.sentence), false;
  }
  if (std::strcmp(row.name, dm::text_of(definition, dm::CLASS_NAME)) != 0) {
    fault(run, "Class ", row.name, " has another name in its definition.");
  }
  if (dm::needless_table(definition) != nullptr) {
    fault(run, "Class ", row.name, " has a table of its own, which a subclass must not keep.");
  }
  dm::findings findings;
  dm::check_class(definition, run.world, tables, findings);
  for (const dm::problem& found : findings) tell(run.check, run.database, found.sentence);
  return findings.empty();
}

static void check_one(class_check& run, const dm::class_row& row, const dm::class_row* previous) {
  std::vector<std::string> tables;
  if (previous != nullptr && std::strcmp(previous->key, row.key) == 0) {
    fault(run, "Class ", row.name, " stands there twice.");
  }
  if (dm::folded(row.name) != row.key) fault(run, "Class ", row.name, " has a wrong key.");
  if (row.stamp < 0 || row.stamp > run.database.counter) {
    fault(run, "Class ", row.name, " has a stamp that its database has not reached.");
  }
  check_row_id(run.check, run.database, dm::join({"Class ", dm::quoted(row.name)}), row.id);
  const bool is_sound = check_definition(run, row, tables);
  if (!take_tables(run, row.id, tables) && is_sound) {
    fault(run, "Class ", row.name, " has other tables than dd_tables gives it.");
  }
}

bool check_classes(checker& check, const dm::database_row& database) {
  class_check run{check, database, dm::class_world(check.store, database.id)};
  next(check.shown, "reading classes and tables");
  if (!keep_rows(run)) return false;
  if (!run.world.read_all()) return check.why = run.world.why, false;
  for (const kept_class& row : run.classes) {
    run.rows.push_back(
        {row.id, row.key.c_str(), row.name.c_str(), row.stamp, row.definition.c_str()});
  }
  run.world.know(run.rows);
  const dm::class_row* previous = nullptr;
  next(check.shown, "checking classes", run.classes.size());
  for (const dm::class_row& row : run.rows) {
    check_one(run, row, previous);
    step(check.shown);
    previous = &row;
    // A damaged superclass or subclass (the field is then TAV_FLD_NAME) is reported in its own
    // turn.
    if (dm::failed(run.world.why) && run.world.why.field != TAV_FLD_NAME) {
      return check.why = run.world.why, false;
    }
    run.world.why = {};
  }
  for (const auto& [id, table] : run.tables) {
    fault(run, "Table ", table, " belongs to no class of its database.");
  }
  return true;
}

}  // namespace dict
