// Every rule that the operations keep, over what is stored; one line for each finding.
#include <algorithm>
#include <iostream>

#include "dict/commands.h"
#include "dm/class_rules.h"
#include "dm/database_number.h"
#include "dm/field_rules.h"
#include "dm/folded.h"
#include "dm/open.h"

namespace dict {

namespace {

struct checker {
  dm::store& store;
  int64_t findings = 0;
  dm::problem why{};  // of the check itself
};

}  // namespace

static void tell(checker& check, std::string_view place, std::string_view sentence) {
  std::cout << place << sentence << '\n';
  ++check.findings;
}

// The key of a field is its folded name: by any other it would never be found.
static bool is_found_by_name(checker& check, int64_t database, const dm::field_row& row) {
  bool is_found = false;
  auto look = [&](const dm::field_row& other) { return is_found = other.number == row.number; };
  const dm::choice named{dm::choice::NAMED, row.name};
  return check.store.calls->fields(&check.store, database, named, dm::visit<dm::field_row>(look),
                                   check.why) &&
         is_found;
}

static bool check_fields(checker& check, const dm::database_row& database, std::string_view place) {
  auto look = [&](const dm::field_row& row) {
    dm::problem fault;
    if (!dm::is_well_formed({row.name, &row.number, &row.type, row.descr}, fault)) {
      tell(check, place, fault.sentence);
    } else if (!is_found_by_name(check, database.id, row)) {
      tell(check, place, dm::join({"Field ", dm::quoted(row.name), " has a wrong key."}));
    }
    return !dm::found(check.why);
  };
  return check.store.calls->fields(&check.store, database.id, {}, dm::visit<dm::field_row>(look),
                                   check.why) &&
         !dm::found(check.why);
}

static void compare_tables(checker& check, std::string_view place, const std::string& name,
                           const std::vector<std::string>& tables,
                           const std::multimap<int64_t, std::string>& stored, int64_t id) {
  std::vector<std::string> wanted;
  for (const std::string& table : tables) wanted.push_back(dm::folded(table));
  std::sort(wanted.begin(), wanted.end());
  std::vector<std::string> present;
  const auto [first, last] = stored.equal_range(id);
  for (auto at = first; at != last; ++at) present.push_back(at->second);
  if (wanted == present) return;
  tell(check, place,
       dm::join({"Class ", dm::quoted(name), " has other tables than dd_tables gives it."}));
}

static bool check_classes(checker& check, const dm::database_row& database,
                          std::string_view place) {
  std::multimap<int64_t, std::string> stored;
  auto note = [&](const dm::table_row& row) { return stored.emplace(row.class_id, row.key), true; };
  if (!check.store.calls->tables(&check.store, database.id, {}, dm::visit<dm::table_row>(note),
                                 check.why)) {
    return false;
  }
  dm::class_world world(check.store, database.id);
  dm::class_reader reader;
  dm::class_def definition;
  dd_flist list;
  if (!world.read_all()) return check.why = world.why, false;
  auto look = [&](const dm::class_row& row) {
    dm::problem damaged;
    dm::findings findings;
    std::vector<std::string> tables;
    if (!dm::load_class(reader, row, list, definition, damaged)) {
      return tell(check, place, damaged.sentence), true;
    }
    const std::string name = dm::text_of(definition, dm::CLASS_NAME);
    if (name != row.name || dm::folded(name) != row.key) {
      tell(check, place,
           dm::join({"Class ", dm::quoted(row.name),
                     " has another name in its "
                     "definition or key."}));
    }
    dm::check_class(definition, world, tables, findings);
    for (const dm::problem& found : findings) tell(check, place, found.sentence);
    if (findings.empty()) compare_tables(check, place, name, tables, stored, row.id);
    if (dm::found(world.why)) tell(check, place, world.why.sentence), world.why = {};
    return true;
  };
  return check.store.calls->classes(&check.store, database.id, {}, dm::visit<dm::class_row>(look),
                                    check.why);
}

static bool check_all(checker& check) {
  auto broken = [&](const std::string_view& sentence) { return tell(check, "", sentence), true; };
  if (!check.store.calls->integrity(&check.store, dm::visit<std::string_view>(broken), check.why)) {
    return false;
  }
  std::vector<dm::database_row> databases;
  auto note = [&](const dm::database_row& row) { return databases.push_back(row), true; };
  if (!check.store.calls->databases(&check.store, dm::visit<dm::database_row>(note), check.why)) {
    return false;
  }
  for (const dm::database_row& row : databases) {
    const std::string place = "database " + dm::database_text(row.number) + ": ";
    if (!check_fields(check, row, place) || !check_classes(check, row, place)) return false;
  }
  return true;
}

int check() {
  dm::settings settings;
  dm::problem why;
  if (!dm::read_settings(settings, why)) return fail(why);
  const dm::store_owner store = dm::open_dictionary(settings, {}, why);
  if (store == nullptr || !store->calls->begin(store.get(), false, why)) return fail(why);
  checker check{*store};
  if (!check_all(check)) {
    // A damaged file is what the check is there to find.
    if (check.why.code != TAV_ERR_STORAGE) return fail(check.why);
    tell(check, "", check.why.sentence);
  }
  if (check.findings == 0) std::cout << "No findings.\n";
  return check.findings == 0 ? DONE : FOUND;
}

}  // namespace dict
