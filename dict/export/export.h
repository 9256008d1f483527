// Everything of a database that is not predefined, as definition files.
#ifndef DICT_EXPORT_EXPORT_H
#define DICT_EXPORT_EXPORT_H

#include <string>
#include <string_view>
#include <vector>

#include "dm/problem.h"

namespace dict {

struct export_file {
  std::string name;
  std::string text;
};

// Names that differ for names of the dictionary which differ in more than letter case: small
// letters, digits, "_", "-", "." and "%", at most 200 bytes, none that a system keeps for a device,
// none hidden. A class has a file of its own, and so have all fields whose names begin alike, up to
// the second "_" (the first, where there is no other).
std::string file_of_class(std::string_view class_name);
std::string file_of_field(std::string_view field_name);

// Whether one of these two could have given the name.
bool is_file_of_export(std::string_view name);

struct folder_changes {
  size_t written = 0;
  size_t deleted = 0;
  size_t unchanged = 0;
};

// Makes the folder hold these files, which are sorted by name. A file whose text is the same is not
// touched, others are replaced whole; what an earlier export wrote and this one does not is
// deleted. Refused, with nothing changed, where something else stands in the way, or where the
// folder holds an export of a database of another number. Follows no links.
bool update_folder(const std::string& folder, const std::string& database,
                   const std::vector<export_file>& files, folder_changes& changes,
                   dm::problem& why);

}  // namespace dict

#endif
