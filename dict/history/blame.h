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

// Names from the top level down and the attribute, folded; what stands twice has a number behind.
using part_key = std::vector<std::string>;
using part_values = std::map<part_key, std::string>;

// A state, taken apart.
struct taken_apart {
  std::vector<blamed_part> parts{};
  std::vector<part_key> keys{};  // of the parts
  part_values values{};
};

bool take_apart(dm::change_of what, const std::string& name, const std::string& state,
                taken_apart& result, dm::problem& why);

// What of the present is not in `before` as it is now, this record made.
void settle(taken_apart& present, const part_values& before, const dm::journal_record& record,
            bool is_found);

// A name that begins with "/" is a class's. False with the reason.
bool find_blame(reading& from, const std::string& name, blamed_thing& result, dm::problem& why);

}  // namespace dict

#endif
