// Tests what a store holds against every rule that the operations keep.
#ifndef DICT_CHECK_CHECK_H
#define DICT_CHECK_CHECK_H

#include <ostream>

#include "dict/terminal/progress.h"
#include "dm/store.h"

namespace dict {

struct checker {
  checker(dm::store& checked, std::ostream& told) : store(checked), out(told) {}

  dm::store& store;
  std::string head{};    // hash that a record of the journal must have; "": any
  std::ostream& out;     // gets a line for each finding
  int64_t findings = 0;  // so far
  dm::problem why{};     // why the check could not go on
  progress shown{"checking"};
};

// Checks all that the store holds, in an open transaction. False when the store fails; damage is a
// finding.
bool check_store(checker& check);

// Check the fields, and the classes and tables, of one database; false when the store fails.
bool check_fields(checker& check, const dm::database_row& database);
bool check_classes(checker& check, const dm::database_row& database);

// Checks the journal, of a dictionary that has one; false when the store fails.
bool check_journal(checker& check);

// Reports a row id below 1, or so high that there may be no room for the next. `thing` begins the
// sentence.
void check_row_id(checker& check, const dm::database_row& database, std::string_view thing,
                  int64_t id);

// Prints a finding and counts it; the second, one in a database.
void tell(checker& check, std::string_view sentence);
void tell(checker& check, const dm::database_row& database, std::string_view sentence);

}  // namespace dict

#endif
