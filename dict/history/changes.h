// What a deployment changed, as definitions before and after.
#ifndef DICT_HISTORY_CHANGES_H
#define DICT_HISTORY_CHANGES_H

#include "dict/diff/diff.h"
#include "dict/history/history.h"

namespace dict {

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
