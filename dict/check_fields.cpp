// The fields of a database: each by itself and against the others, and the predefined ones.
#include <algorithm>
#include <map>
#include <set>

#include "dict/check.h"
#include "dm/field_rules.h"
#include "dm/folded.h"
#include "dm/predefined.h"

namespace dict {

namespace {

// What was met so far, by which later fields are judged.
struct met_fields {
  std::map<int32_t, std::string> by_number;  // their names
  std::set<std::string> keys;                // folded names
};

}  // namespace

static bool is_predefined(const char* name) {
  const auto fields = dm::predefined_fields();
  return std::any_of(fields.begin(), fields.end(),
                     [&](const dm::field_row& row) { return dd_equal(row.name, name); });
}

static void check_field(checker& check, const dm::database_row& database, const dm::field_row& row,
                        met_fields& met) {
  const auto fault = [&](std::initializer_list<std::string_view> pieces) {
    tell(check, database, dm::join({"Field ", dm::quoted(row.name), dm::join(pieces)}));
  };
  dm::problem why;
  if (!dm::is_well_formed({row.name, row.descr, row.number, row.type}, why)) {
    tell(check, database, why.sentence);
  }
  const auto [holder, is_free] = met.by_number.try_emplace(row.number, row.name);
  if (!is_free) fault({" has the number of field ", dm::quoted(holder->second), "."});
  if (!met.keys.insert(dm::folded(row.name)).second) fault({" stands there twice."});
  if (row.flags != 0 && !is_predefined(row.name)) {
    fault({" has flags, which only predefined fields have."});
  }
  if (row.stamp < 0 || row.stamp > database.counter) {
    fault({" has a stamp that its database has not reached."});
  }
}

// A field with another key than its folded name would never be found.
static bool check_key(checker& check, const dm::database_row& database, int32_t number,
                      const std::string& name) {
  bool is_found = false;
  auto look = [&](const dm::field_row& row) { return !(is_found = row.number == number); };
  const dm::choice named{dm::choice::NAMED, name.c_str()};
  const bool read = check.store.calls->fields(&check.store, database.id, named,
                                              dm::visit<dm::field_row>(look), check.why);
  if (!read || is_found) return read;
  tell(check, database, dm::join({"Field ", dm::quoted(name), " has a wrong key."}));
  return true;
}

// A new description is all that a predefined field can get.
static bool check_predefined(checker& check, const dm::database_row& database,
                             const dm::field_row& expected) {
  bool is_there = false;
  bool is_as_made = true;
  auto look = [&](const dm::field_row& row) {
    is_there = true;
    is_as_made = is_as_made && row.number == expected.number && row.type == expected.type &&
                 row.flags == expected.flags && row.descr != nullptr && *row.descr != '\0';
    return true;
  };
  const dm::choice named{dm::choice::NAMED, expected.name};
  const bool read = check.store.calls->fields(&check.store, database.id, named,
                                              dm::visit<dm::field_row>(look), check.why);
  if (!read || (is_there && is_as_made)) return read;
  tell(check, database,
       dm::join({"The predefined field ", dm::quoted(expected.name),
                 is_there ? " is not as it was made." : " is missing."}));
  return true;
}

bool check_fields(checker& check, const dm::database_row& database) {
  met_fields met;
  auto look = [&](const dm::field_row& row) {
    step(check.shown);
    return check_field(check, database, row, met), true;
  };
  next(check.shown, "checking fields");
  if (!check.store.calls->fields(&check.store, database.id, {}, dm::visit<dm::field_row>(look),
                                 check.why)) {
    return false;
  }
  for (const auto& [number, name] : met.by_number) {
    if (!check_key(check, database, number, name)) return false;
  }
  for (const dm::field_row& expected : dm::predefined_fields()) {
    if (!check_predefined(check, database, expected)) return false;
  }
  return true;
}

}  // namespace dict
