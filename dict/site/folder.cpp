// A folder that is replaced whole. The new one is made beside it, under a name of its own, and then
// both change their names in one step. A mark in it lists its files: with a file that the mark does
// not list, the folder is somebody else's, and nothing in it is touched.
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <set>

#include "dict/site/site.h"
#include "dm/descriptor.h"

namespace dict {

using dm::descriptor;

static constexpr char MARK[] = "site.manifest";
static constexpr char HEAD[] =
    "# The files that 'tav_dict site' writes and deletes in this folder.\n";
static constexpr char DATA[] = "data";

namespace {

using names = std::set<std::string>;  // "index.html", "data/x.js"

// The folder that is to be replaced, as it was found.
struct standing {
  bool is_there = false;
  struct stat status {};
};

}  // namespace

static bool refuse(const std::string& folder, std::string_view fault, dm::problem& why) {
  why.sentence = dm::join({"Folder ", dm::quoted(folder), fault});
  return false;
}

static bool fail_at(const std::string& folder, std::string_view failure, dm::problem& why) {
  return refuse(folder, dm::join({failure, std::strerror(errno), "."}), why);
}

// --- What is there -------------------------------------------------------------------------------

static bool is_folder(const std::string& path) {
  struct stat found {};
  return lstat(path.c_str(), &found) == 0 && S_ISDIR(found.st_mode);
}

// Adds the names in a folder, and those in the folder of data below it; false with errno.
static bool list(const std::string& folder, const std::string& before, names& found) {
  const std::unique_ptr<DIR, int (*)(DIR*)> open(opendir(folder.c_str()), closedir);
  if (open == nullptr) return false;
  for (errno = 0; const dirent* entry = readdir(open.get()); errno = 0) {
    const std::string name = entry->d_name;
    if (name == "." || name == "..") continue;
    const bool has_more = before.empty() && name == DATA && is_folder(folder + "/" + name);
    if (has_more && !list(folder + "/" + name, "data/", found)) return false;
    if (!has_more) found.insert(before + name);
  }
  return errno == 0;
}

static bool read_mark(const std::string& folder, names& listed) {
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

// Whether all that is in the folder is this program's; it may be empty.
static bool is_own(const std::string& folder, dm::problem& why) {
  names found, listed;
  if (!list(folder, "", found)) return fail_at(folder, " cannot be read: ", why);
  if (found.empty()) return true;
  if (!read_mark(folder, listed)) {
    return refuse(folder, " holds files, but no pages of an earlier run; choose another folder.",
                  why);
  }
  for (const std::string& name : found) {
    if (listed.count(name) != 0) continue;
    return refuse(folder,
                  dm::join({" holds ", dm::quoted(name),
                            ", which is none of its pages and would be lost; move it away."}),
                  why);
  }
  return true;
}

static bool is_mount_point(const std::string& path) {
  struct statx found {};
  return statx(AT_FDCWD, path.c_str(), AT_SYMLINK_NOFOLLOW, STATX_TYPE, &found) == 0 &&
         (found.stx_attributes & STATX_ATTR_MOUNT_ROOT) != 0;
}

static constexpr char MOUNTED[] =
    " is where a file system is mounted, and so cannot be replaced in one step; choose a folder "
    "below it.";

// Before anything is written.
static bool look(const std::string& folder, standing& found, dm::problem& why) {
  const std::string last = folder.substr(folder.rfind('/') + 1);
  if (last.empty() || last == "." || last == "..") {
    return refuse(folder, " must be named by its own name.", why);
  }
  if (lstat(folder.c_str(), &found.status) != 0) {
    return errno == ENOENT || fail_at(folder, " cannot be looked at: ", why);
  }
  found.is_there = true;
  if (S_ISLNK(found.status.st_mode)) return refuse(folder, " is a link; name its target.", why);
  if (!S_ISDIR(found.status.st_mode)) return refuse(folder, " is no folder.", why);
  if (is_mount_point(folder)) return refuse(folder, MOUNTED, why);
  return is_own(folder, why);
}

// --- The new folder ------------------------------------------------------------------------------

// What stands in it is this program's: a mark alone, which anybody may have written, deletes
// nothing.
static void remove_folder(const std::string& folder) {
  names files;
  list(folder, "", files);
  for (const std::string& name : files) unlink((folder + "/" + name).c_str());
  rmdir((folder + "/" + DATA).c_str());
  rmdir(folder.c_str());
}

// Owner and group of the folder before, if it has others.
static bool keeps_owner(int fd, const standing& before) {
  struct stat own {};
  if (!before.is_there) return true;
  const struct stat& old = before.status;
  return fstat(fd, &own) == 0 && ((own.st_uid == old.st_uid && own.st_gid == old.st_gid) ||
                                  fchown(fd, old.st_uid, old.st_gid) == 0);
}

// Whoever could look into the folder before can read what is in it now.
static bool keeps_readers(int fd, const standing& before) {
  return !before.is_there || fchmod(fd, (before.status.st_mode & 0444) | 0200) == 0;
}

static bool write_file(const std::string& folder, const site_file& file, const standing& before) {
  const std::string path = folder + "/" + file.name;
  const descriptor made(open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666));
  return made.fd >= 0 && dm::write_all(made.fd, file.text) && keeps_owner(made.fd, before) &&
         keeps_readers(made.fd, before);
}

static mode_t usual_mode() {
  const mode_t mask = umask(0);
  umask(mask);
  return 0777 & ~mask;
}

static bool set_mode(const std::string& folder, const standing& before) {
  const descriptor made(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  const mode_t mode = before.is_there ? before.status.st_mode & 07777 : usual_mode();
  return made.fd >= 0 && keeps_owner(made.fd, before) && fchmod(made.fd, mode) == 0;
}

static site_file mark_of(const std::vector<site_file>& files) {
  names sorted;
  for (const site_file& file : files) sorted.insert(file.name);
  site_file mark{MARK, HEAD};
  for (const std::string& name : sorted) mark.text.append(name).append("\n");
  return mark;
}

// The disk has all of it before anybody sees it.
static bool write_folder(const std::string& folder, const std::vector<site_file>& files,
                         const standing& before) {
  const std::string data = folder + "/" + DATA;
  if (mkdir(data.c_str(), 0700) != 0) return false;
  for (const site_file& file : files) {
    if (!write_file(folder, file, before)) return false;
  }
  return write_file(folder, mark_of(files), before) && set_mode(data, before) &&
         set_mode(folder, before);
}

// --- The exchange --------------------------------------------------------------------------------

static bool cannot_exchange(const std::string& folder, dm::problem& why) {
  if (errno == EBUSY) return refuse(folder, MOUNTED, why);
  if (errno == EINVAL || errno == ENOSYS) {
    return refuse(folder,
                  " lies in a file system that cannot replace a folder in one step; write the "
                  "pages to a new folder.",
                  why);
  }
  return fail_at(folder, " cannot be replaced: ", why);
}

// What was taken away must still be this program's: it may have changed meanwhile.
static bool exchange(const std::string& made, const std::string& folder, dm::problem& why) {
  const auto rename = [&](unsigned how) {
    return renameat2(AT_FDCWD, made.c_str(), AT_FDCWD, folder.c_str(), how) == 0;
  };
  if (!rename(RENAME_EXCHANGE)) return cannot_exchange(folder, why);
  if (is_own(made, why)) return true;
  rename(RENAME_EXCHANGE);
  return refuse(folder, " was changed by somebody meanwhile; nothing was replaced.", why);
}

static bool put_in_place(const std::string& made, const std::string& folder, const standing& before,
                         dm::problem& why) {
  if (before.is_there) return exchange(made, folder, why);
  return renameat2(AT_FDCWD, made.c_str(), AT_FDCWD, folder.c_str(), RENAME_NOREPLACE) == 0 ||
         cannot_exchange(folder, why);
}

bool replace_folder(const std::string& named, const std::vector<site_file>& files,
                    dm::problem& why) {
  const std::string folder = named.substr(0, named.find_last_not_of('/') + 1);
  standing before;
  if (!look(folder, before, why)) return false;
  const size_t slash = folder.rfind('/');
  std::string made =
      folder.substr(0, slash == folder.npos ? 0 : slash + 1) + ".tav_dict_site.XXXXXX";
  if (mkdtemp(made.data()) == nullptr) {
    return fail_at(folder, " cannot be made, because the folder around it takes no new one: ", why);
  }
  const bool is_written =
      write_folder(made, files, before) || fail_at(folder, " cannot be written: ", why);
  const bool is_done = is_written && put_in_place(made, folder, before, why);
  if (!is_done || before.is_there) remove_folder(made);
  return is_done;
}

}  // namespace dict
