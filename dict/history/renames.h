// The names that a field or class had before 'tav_dict rename', or before that was undone.
#ifndef DICT_HISTORY_RENAMES_H
#define DICT_HISTORY_RENAMES_H

#include <string>
#include <vector>

#include "dm/journal/read.h"

namespace dict {

// A rename as a record's detail tells it: "field" or "class", and folded names; `what` is empty in
// any other record.
struct told_rename {
  std::string what{};
  std::string from{};
  std::string to{};
};
told_rename read_rename(const dm::journal_record& record);

// A folded name, and the first and last record in which it is the thing's.
struct past_name {
  std::string key;
  int64_t from;
  int64_t to;
};

// The names of what has that name now, the newest first. False with the reason.
bool find_names(dm::store& store, dm::change_of what, const std::string& name,
                std::vector<past_name>& names, dm::problem& why);

// A thing of today with all its names.
struct named_thing {
  dm::change_of what;
  std::string name;
  std::vector<past_name> names{};
};
// The same for many things, with one walk of the journal.
bool find_names(dm::store& store, std::vector<named_thing>& things, dm::problem& why);

// The name that the record gave what was called that; "" where it did not rename it.
std::string name_after(const dm::journal_record& record, dm::change_of what,
                       const std::string& name);

// Whether the change of the record is one of the thing with those names.
bool is_of(const std::vector<past_name>& names, int64_t record, std::string_view changed);

}  // namespace dict

#endif
