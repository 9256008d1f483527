// Who gave each part of a field or class the value that it has.
#ifndef DICT_HISTORY_BLAME_H
#define DICT_HISTORY_BLAME_H

#include "dict/history/history.h"

namespace dict {

// A field or class itself, an entry, or an attribute of one.
struct blamed_part {
  std::vector<std::string> path{};  // names of the entries from the top level down
  std::string attribute{};          // its keyword; empty for what has attributes
  std::string value{};              // as the language writes it; of what has attributes the type
  // The record that made it so; number 0 where the journal no longer tells.
  dm::journal_record by{};
  bool is_found = false;  // it was there when the journal began, with that record
};

struct blamed_thing {
  dm::change_of what = dm::change_of::FIELD;
  std::string name{};
  bool is_there = false;
  std::vector<blamed_part> parts{};  // each before its own
};

// A name that begins with "/" is a class's. False with the reason.
bool find_blame(reading& from, const std::string& name, blamed_thing& result, dm::problem& why);

}  // namespace dict

#endif
