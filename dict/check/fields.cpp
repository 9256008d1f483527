// The fields of a database: each by itself and against the others, and the predefined ones.
#include <algorithm>
#include <map>
#include <set>

#include "dict/check/check.h"
#include "dm/folded.h"
#include "dm/predefined.h"
#include "dm/rules/field.h"

namespace dict {

namespace {

// What is known of the fields read so far.
struct met_fields {
  std::map<int32_t, std::string> by_number;     // names
  std::set<std::string> keys;                   // folded names
  std::map<int32_t, std::string> misplaced;     // names of fields with a wrong key, by number
  std::map<std::string, bool> predefined_rows;  // by key: whether the field is as it was made
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

// Whether a predefined field is as it was made. Only its description may change, and not be empty.
static bool is_as_made(const dm::field_row& row, const dm::field_row& expected) {
  return row.number == expected.number && row.type == expected.type &&
         row.flags == expected.flags && row.descr != nullptr && *row.descr != '\0';
}

// Stores find a field by its key, so one whose key is not its folded name would never be found.
static void note_key(const dm::field_row& row, met_fields& met) {
  const std::string key = row.key != nullptr ? row.key : "";
  if (key != dm::folded(row.name)) met.misplaced.try_emplace(row.number, row.name);
  for (const dm::field_row& expected : dm::predefined_fields()) {
    if (!dd_equal(key.c_str(), expected.name)) continue;
    bool& as_made = met.predefined_rows.try_emplace(key, true).first->second;
    as_made = as_made && is_as_made(row, expected);
  }
}

static void check_predefined(checker& check, const dm::database_row& database,
                             const dm::field_row& expected, const met_fields& met) {
  const auto found = met.predefined_rows.find(dm::folded(expected.name));
  const bool is_there = found != met.predefined_rows.end();
  if (is_there && found->second) return;
  tell(check, database,
       dm::join({"The predefined field ", dm::quoted(expected.name),
                 is_there ? " is not as it was made." : " is missing."}));
}

bool check_fields(checker& check, const dm::database_row& database) {
  met_fields met;
  auto look = [&](const dm::field_row& row) {
    step(check.shown);
    note_key(row, met);
    return check_field(check, database, row, met), true;
  };
  next(check.shown, "checking fields");
  const dm::choice with_keys{dm::choice::WITH_KEYS};
  if (!check.store.calls->fields(&check.store, database.id, with_keys,
                                 dm::visit<dm::field_row>(look), check.why)) {
    return false;
  }
  for (const auto& [number, name] : met.misplaced) {
    tell(check, database, dm::join({"Field ", dm::quoted(name), " has a wrong key."}));
  }
  for (const dm::field_row& expected : dm::predefined_fields()) {
    check_predefined(check, database, expected, met);
  }
  return true;
}

}  // namespace dict
