// The names that a field or class had before 'tav_dict rename', or before that was undone.
#ifndef DICT_HISTORY_RENAMES_H
#define DICT_HISTORY_RENAMES_H

#include <map>
#include <string>
#include <vector>

#include "dm/journal/read.h"

namespace dict {

// A rename as a record's detail tells it: "field" or "class", and the names as they are written.
struct told_rename {
  std::string what{};
  std::string from{};
  std::string to{};
};
// Those that the record made, one after the other; none where it is no rename.
std::vector<told_rename> read_renames(const dm::journal_record& record);
// The members that tell them, behind others of the record's detail: "" or `,"rename":...`.
std::string renames_detail(const std::vector<told_rename>& renames);
// What takes them back, in that order.
std::vector<told_rename> taken_back(const std::vector<told_rename>& renames);

// What is called `name` when the renames have been made in that order. With a class those below it
// are renamed.
std::string name_through(const std::vector<told_rename>& renames, dm::change_of what,
                         std::string name);

// A folded name, and the first and last record in which it is the thing's.
struct past_name {
  std::string key;
  int64_t from;
  int64_t to;
};

// The names of what has a name now: each database has a thing of its own by that name.
struct past_names {
  std::string key{};                                        // folded, of now
  std::map<std::string, std::vector<past_name>> renamed{};  // by database, where it was renamed

  // In a database (N.N.N.N), the newest first.
  std::vector<past_name> in(const std::string& database) const;
};

// False with the reason.
bool find_names(dm::store& store, dm::change_of what, const std::string& name, past_names& names,
                dm::problem& why);

// A thing of today with all its names.
struct named_thing {
  dm::change_of what;
  std::string name;
  past_names names{};
};
// The same for many things, with one walk of the journal.
bool find_names(dm::store& store, std::vector<named_thing>& things, dm::problem& why);

// The name that the record gave what was called that in its database; "" where it did not rename
// it.
std::string name_after(const dm::journal_record& record, dm::change_of what,
                       const std::string& name);

// Whether the change of a record, which is about that database, is one of the thing.
bool is_of(const past_names& names, const std::string& database, int64_t record,
           std::string_view changed);

}  // namespace dict

#endif
