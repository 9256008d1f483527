// A folder that is replaced whole. The new one is made beside it, under a name of its own, and then
// both change their names in one step.
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

#include "dict/site/own_folder.h"
#include "dm/blocked_signals.h"
#include "dm/descriptor.h"

namespace dict {

using dm::descriptor;

namespace {

// The folder that is to be replaced, as it was found.
struct standing {
  bool is_there = false;
  struct stat status {};
};

}  // namespace

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
    return refuse_folder(folder, " must be named by its own name.", why);
  }
  if (lstat(folder.c_str(), &found.status) != 0) {
    return errno == ENOENT || folder_failed(folder, " cannot be looked at: ", why);
  }
  found.is_there = true;
  if (S_ISLNK(found.status.st_mode))
    return refuse_folder(folder, " is a link; name its target.", why);
  if (!S_ISDIR(found.status.st_mode)) return refuse_folder(folder, " is no folder.", why);
  if (is_mount_point(folder)) return refuse_folder(folder, MOUNTED, why);
  file_names files;
  return is_own(folder, files, why);
}

// --- The new folder ------------------------------------------------------------------------------

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

static bool fill(int fd, std::string_view text, const standing& before) {
  return fd >= 0 && dm::write_all(fd, text) && keeps_owner(fd, before) && keeps_readers(fd, before);
}

static int make_file(const std::string& path) {
  return open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
}

// The mark comes first, and is locked before it says anything: what is there without a lock was
// left by a run that was killed.
static bool write_mark(new_folder& made, std::string_view text, const standing& before) {
  made.mark = make_file(made.path + "/" + MARK);
  if (made.mark >= 0) flock(made.mark, LOCK_EX | LOCK_NB);
  return fill(made.mark, text, before);
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

// The end that somebody asks the process for comes when nothing is left.
static bool write_folder(new_folder& made, const std::vector<site_file>& files,
                         const standing& before, const dm::blocked_signals& blocked) {
  const std::string data = made.path + "/" + DATA;
  if (!write_mark(made, mark_of(files), before) || mkdir(data.c_str(), 0700) != 0) return false;
  for (const site_file& file : files) {
    const descriptor one(make_file(made.path + "/" + file.name));
    if (!fill(one.fd, file.text, before)) return false;
    if (!blocked.is_asked_to_end()) continue;
    errno = EINTR;
    return false;
  }
  return set_mode(data, before) && set_mode(made.path, before);
}

// --- The exchange --------------------------------------------------------------------------------

static bool cannot_exchange(const std::string& folder, dm::problem& why) {
  if (errno == EBUSY) return refuse_folder(folder, MOUNTED, why);
  if (errno == EINVAL || errno == ENOSYS) {
    return refuse_folder(
        folder,
        " lies in a file system that cannot replace a folder in one step; write the "
        "pages to a new folder.",
        why);
  }
  return folder_failed(folder, " cannot be replaced: ", why);
}

// What was taken away must still be this program's: it may have changed meanwhile.
static bool exchange(new_folder& made, const std::string& folder, dm::problem& why) {
  const auto rename = [&](unsigned how) {
    return renameat2(AT_FDCWD, made.path.c_str(), AT_FDCWD, folder.c_str(), how) == 0;
  };
  if (!rename(RENAME_EXCHANGE)) return cannot_exchange(folder, why);
  if (is_own(made.path, made.to_delete, why)) return true;
  rename(RENAME_EXCHANGE);
  made.to_delete.clear();
  return refuse_folder(folder, " was changed by somebody meanwhile; nothing was replaced.", why);
}

static bool put_in_place(new_folder& made, const std::string& folder, const standing& before,
                         dm::problem& why) {
  if (before.is_there) return exchange(made, folder, why);
  const auto named = [&] {
    return renameat2(AT_FDCWD, made.path.c_str(), AT_FDCWD, folder.c_str(), RENAME_NOREPLACE) == 0;
  };
  if (!named()) return cannot_exchange(folder, why);
  made.is_made = false;
  return true;
}

bool replace_folder(const std::string& named, const std::vector<site_file>& files,
                    dm::problem& why) {
  const std::string folder = named.substr(0, named.find_last_not_of('/') + 1);
  standing before;
  if (!look(folder, before, why)) return false;
  remove_left_folders(folder);
  const dm::blocked_signals blocked;
  new_folder made(folder);
  if (!made.is_made) {
    return folder_failed(folder,
                         " cannot be made, because the folder around it takes no new one: ", why);
  }
  if (!write_folder(made, files, before, blocked)) {
    return folder_failed(folder, " cannot be written: ", why);
  }
  return put_in_place(made, folder, before, why);
}

}  // namespace dict
