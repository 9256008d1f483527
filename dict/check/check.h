// Every rule that the operations keep, over what a store holds.
#ifndef DICT_CHECK_CHECK_H
#define DICT_CHECK_CHECK_H

#include <ostream>

#include "dict/terminal/progress.h"
#include "dm/store.h"

namespace dict {

struct checker {
  checker(dm::store& checked, std::ostream& told) : store(checked), out(told) {}

  dm::store& store;
  std::ostream& out;     // gets a line for each finding
  int64_t findings = 0;  // so far
  dm::problem why{};     // why the check itself had to end
  progress shown{"checking"};
};

// Checks all that the store holds, in an open transaction. False when the store fails; a damaged
// one is a finding.
bool check_store(checker& check);

// Its parts, for one database; false when the store fails.
bool check_fields(checker& check, const dm::database_row& database);
bool check_classes(checker& check, const dm::database_row& database);

// Finds a row id after which there may be no other.
void check_row_id(checker& check, const dm::database_row& database, std::string_view thing,
                  int64_t id);

// Tells a finding in a database, in a sentence.
void tell(checker& check, const dm::database_row& database, std::string_view sentence);

}  // namespace dict

#endif
