// The command check: the engine's own test, then each database.
#include "dict/check/check.h"

#include <iostream>
#include <vector>

#include "dd/database_number.h"
#include "dict/commands.h"
#include "dict/reading.h"
#include "dict/terminal/visible.h"
#include "dm/open.h"

namespace dict {

void tell(checker& check, std::string_view sentence) {
  hide(check.shown);
  check.out << visible{sentence} << '\n';
  ++check.findings;
}

void tell(checker& check, const dm::database_row& database, std::string_view sentence) {
  tell(check, dm::join({"database ", dd_database_text(database.number), ": ", sentence}));
}

void check_row_id(checker& check, const dm::database_row& database, std::string_view thing,
                  int64_t id) {
  if (id >= 1 && id <= dm::HIGHEST_ROW_ID) return;
  tell(check, database, dm::join({thing, " has the row id ", std::to_string(id), "."}));
}

static bool check_engine(checker& check) {
  auto broken = [&](const std::string_view& sentence) { return tell(check, sentence), true; };
  return check.store.calls->integrity(&check.store, dm::visit<std::string_view>(broken), check.why);
}

static bool check_databases(checker& check) {
  std::vector<dm::database_row> databases;
  auto note = [&](const dm::database_row& row) {
    for (const dm::database_row& other : databases) {
      if (other.number == row.number) tell(check, row, "The dictionary holds it twice.");
    }
    check_row_id(check, row, "The database", row.id);
    if (!dm::has_room(row.counter, dm::WRITES_OF_A_DEPLOYMENT)) {
      tell(check, row,
           dm::join(
               {"The counter ", std::to_string(row.counter), " leaves no room for a deployment."}));
    }
    return databases.push_back(row), true;
  };
  if (!check.store.calls->databases(&check.store, dm::visit<dm::database_row>(note), check.why)) {
    return false;
  }
  if (databases.empty()) tell(check, "The dictionary holds no database.");
  for (const dm::database_row& row : databases) {
    if (!check_fields(check, row) || !check_classes(check, row)) return false;
  }
  return true;
}

// Whether the store failed because of damage; that is then a finding, not a failure of the check.
static bool is_damage(checker& check) {
  if (!check.why.is_damage) return false;
  tell(check, check.why.sentence);
  return true;
}

bool check_store(checker& check) {
  return (check_engine(check) && check_databases(check) && check_journal(check)) ||
         is_damage(check);
}

static dm::problem no_journal(dm::store& store) {
  dm::problem why;
  why.sentence = dm::join({"Dictionary ", dm::quoted(store.calls->name(&store)),
                           " has no journal; 'tav_dict upgrade' begins one."});
  return why;
}

int check(const std::string& head) {
  dm::settings settings;
  dm::problem why;
  if (!dm::read_settings(settings, why)) return fail(why);
  tell_unknown_entries();
  const dm::store_owner store = dm::open_dictionary(settings, {}, why);
  if (store == nullptr) {
    const int status = fail(why);
    return why.is_damage ? FOUND : status;
  }
  checker check{*store, std::cout};
  check.head = head;
  if (!head.empty() && !dm::has_journal(*store)) return fail(no_journal(*store));
  if (!store->calls->begin(store.get(), false, why)) return fail(why);
  const bool is_checked = check_store(check);
  hide(check.shown);
  if (!is_checked) return fail(check.why);
  if (check.findings == 0) std::cout << "No findings.\n";
  return check.findings == 0 ? DONE : FOUND;
}

}  // namespace dict
