// What a deployment changed, as definitions before and after.
#ifndef DICT_HISTORY_CHANGES_H
#define DICT_HISTORY_CHANGES_H

#include "dict/diff/diff.h"
#include "dict/history/history.h"

namespace dict {

// A field or class that a deployment changed.
struct changed_thing {
  dm::change_of what;
  std::string name;
  bool is_first = true;  // `before` is not set yet
  std::optional<std::string> before{};
  std::optional<std::string> after{};
};
using changed_things = std::map<std::string, changed_thing>;  // by dm::thing_key

// Appends what differs between the states before and after; false with the reason.
bool compare_things(const changed_things& all, std::vector<difference>& found, dm::problem& why);

// What the deployment's records changed in one database.
struct database_changes {
  std::string database{};
  std::vector<difference> found{};
};

// Appends what the deployment changed, for each database that it changed. What the journal began
// with is no change. False with the reason.
bool find_changes(reading& from, const deployment& one, std::vector<database_changes>& result,
                  dm::problem& why);

}  // namespace dict

#endif
