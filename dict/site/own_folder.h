// A folder of pages on the disk. A mark in it lists its files: with a file that the mark does not
// list, the folder is somebody else's, and nothing in it is touched.
#ifndef DICT_SITE_OWN_FOLDER_H
#define DICT_SITE_OWN_FOLDER_H

#include <set>

#include "dict/site/site.h"

namespace dict {

inline constexpr char MARK[] = "site.manifest";
inline constexpr char DATA[] = "data";

using file_names = std::set<std::string>;  // "index.html", "data/x.js"

// Gives false with the reason; a failure's is in errno.
bool refuse_folder(const std::string& folder, std::string_view fault, dm::problem& why);
bool folder_failed(const std::string& folder, std::string_view failure, dm::problem& why);

// What the mark of these files says.
std::string mark_of(const std::vector<site_file>& files);

// Adds the names in a folder, and those in the folder of data in it; false with errno.
bool list_folder(const std::string& folder, file_names& found);

// Whether all that is in the folder is this program's, and what that is; it may be empty or gone.
bool is_own(const std::string& folder, file_names& found, dm::problem& why);

// Deletes these files, the mark as the last one, and the folder when it is empty then.
void remove_folder(const std::string& folder, const file_names& files);

// --- While the pages are written -------------------------------------------------------------

// A new folder beside the one that is named. What still has its name in the end is deleted.
struct new_folder {
  explicit new_folder(const std::string& beside);
  ~new_folder();
  new_folder(const new_folder&) = delete;
  new_folder& operator=(const new_folder&) = delete;

  std::string path;
  bool is_made;            // otherwise errno tells why not
  int mark = -1;           // an open file, locked: a living process writes here
  file_names to_delete{};  // none: all that is there
};

// Deletes new folders beside the one that is named, which killed runs of this user have left: those
// with a mark that lists all that is there, and that no process has locked.
void remove_left_folders(const std::string& beside);

}  // namespace dict

#endif
