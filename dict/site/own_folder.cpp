#include "dict/site/own_folder.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>

#include "dm/descriptor.h"

namespace dict {

using dm::descriptor;

static constexpr char HEAD[] =
    "# The files that 'tav_dict site' writes and deletes in this folder.\n";
static constexpr std::string_view IN_DATA = "data/";

bool refuse_folder(const std::string& folder, std::string_view fault, dm::problem& why) {
  why.sentence = dm::join({"Folder ", dm::quoted(folder), fault});
  return false;
}

bool folder_failed(const std::string& folder, std::string_view failure, dm::problem& why) {
  return refuse_folder(folder, dm::join({failure, std::strerror(errno), "."}), why);
}

// --- What is there -------------------------------------------------------------------------------

static bool is_folder(const std::string& path) {
  struct stat found {};
  return lstat(path.c_str(), &found) == 0 && S_ISDIR(found.st_mode);
}

static bool list(const std::string& folder, std::string_view before, file_names& found) {
  const std::unique_ptr<DIR, int (*)(DIR*)> open(opendir(folder.c_str()), closedir);
  if (open == nullptr) return false;
  for (errno = 0; const dirent* entry = readdir(open.get()); errno = 0) {
    const std::string name = entry->d_name;
    if (name == "." || name == "..") continue;
    const bool has_more = before.empty() && name == DATA && is_folder(folder + "/" + name);
    if (has_more && !list(folder + "/" + name, IN_DATA, found)) return false;
    if (!has_more) found.insert(std::string(before) + name);
  }
  return errno == 0;
}

bool list_folder(const std::string& folder, file_names& found) {
  return list(folder, "", found);
}

// --- The mark ------------------------------------------------------------------------------------

std::string mark_of(const std::vector<site_file>& files) {
  file_names sorted;
  for (const site_file& file : files) sorted.insert(file.name);
  std::string text = HEAD;
  for (const std::string& name : sorted) text.append(name).append("\n");
  return text;
}

static bool read_mark(const std::string& folder, file_names& listed) {
  const std::string path = folder + "/" + MARK;
  const descriptor file(open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
  const std::unique_ptr<FILE, int (*)(FILE*)> stream(
      file.fd < 0 ? nullptr : fdopen(dup(file.fd), "r"), [](FILE* s) { return s ? fclose(s) : 0; });
  char line[256];
  if (stream == nullptr || fgets(line, sizeof line, stream.get()) == nullptr ||
      std::strcmp(line, HEAD) != 0) {
    return false;
  }
  listed.insert(MARK);
  while (fgets(line, sizeof line, stream.get()) != nullptr) {
    line[std::strcspn(line, "\n")] = '\0';
    listed.insert(line);
  }
  return true;
}

bool is_own(const std::string& folder, file_names& found, dm::problem& why) {
  file_names listed;
  if (!list_folder(folder, found) && errno != ENOENT) {
    return folder_failed(folder, " cannot be read: ", why);
  }
  if (found.empty()) return true;
  if (!read_mark(folder, listed)) {
    return refuse_folder(
        folder, " holds files, but no pages of an earlier run; choose another folder.", why);
  }
  for (const std::string& name : found) {
    if (listed.count(name) != 0) continue;
    return refuse_folder(folder,
                         dm::join({" holds ", dm::quoted(name),
                                   ", which is none of its pages and would be lost; move it "
                                   "away."}),
                         why);
  }
  return true;
}

// --- Deletion ------------------------------------------------------------------------------------

// Writable, whatever it was: its owner may delete what is in it.
static int open_folder(int around, const char* name) {
  const int fd = openat(around, name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
  struct stat status {};
  if (fd >= 0 && fstat(fd, &status) == 0) fchmod(fd, (status.st_mode & 07777) | 0700);
  return fd;
}

// The folders are open: nobody puts a link in the place of one meanwhile. The mark goes last, so
// that what a run that is killed now leaves can be deleted by a later one.
void remove_folder(const std::string& folder, const file_names& files) {
  const descriptor top(open_folder(AT_FDCWD, folder.c_str()));
  const descriptor data(open_folder(top.fd, DATA));
  for (const std::string& name : files) {
    if (name == MARK) continue;
    const bool is_data = name.starts_with(IN_DATA);
    unlinkat(is_data ? data.fd : top.fd, name.c_str() + (is_data ? IN_DATA.size() : 0), 0);
  }
  unlinkat(top.fd, DATA, AT_REMOVEDIR);
  if (files.count(MARK) != 0) unlinkat(top.fd, MARK, 0);
  rmdir(folder.c_str());
}

}  // namespace dict
