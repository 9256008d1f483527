// The folder in which pages are written, and those that killed runs have left.
#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <memory>

#include "dict/site/own_folder.h"
#include "dm/descriptor.h"

namespace dict {

static constexpr std::string_view BEGIN = ".tav_dict_site.", REST = "XXXXXX";

// With the "/", or empty.
static std::string around(const std::string& folder) {
  return folder.substr(0, folder.rfind('/') + 1);
}

new_folder::new_folder(const std::string& beside) : path(around(beside)) {
  path.append(BEGIN).append(REST);
  is_made = mkdtemp(path.data()) != nullptr;
}

// Without memory for the list of files a later run deletes them.
new_folder::~new_folder() try {
  if (is_made && to_delete.empty()) list_folder(path, to_delete);
  if (is_made) remove_folder(path, to_delete);
  if (mark >= 0) close(mark);
} catch (const std::bad_alloc&) {
}

static bool is_of_this_user(const std::string& folder) {
  struct stat found {};
  return lstat(folder.c_str(), &found) == 0 && S_ISDIR(found.st_mode) && found.st_uid == geteuid();
}

// Who cannot lock the mark does not know that nobody writes.
static void remove_left(const std::string& folder) {
  const std::string path = folder + "/" + MARK;
  const dm::descriptor mark(open(path.c_str(), O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
  file_names found;
  dm::problem why;
  const bool is_left = mark.fd >= 0 && flock(mark.fd, LOCK_EX | LOCK_NB) == 0;
  if (is_left && is_own(folder, found, why)) remove_folder(folder, found);
}

void remove_left_folders(const std::string& beside) {
  const std::string outside = around(beside);
  const std::unique_ptr<DIR, int (*)(DIR*)> open(opendir(outside.empty() ? "." : outside.c_str()),
                                                 closedir);
  while (const dirent* entry = open == nullptr ? nullptr : readdir(open.get())) {
    const std::string_view name = entry->d_name;
    if (!name.starts_with(BEGIN) || name.size() != BEGIN.size() + REST.size()) continue;
    const std::string folder = outside + entry->d_name;
    if (is_of_this_user(folder)) remove_left(folder);
  }
}

}  // namespace dict
