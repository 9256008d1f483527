#include "dm/sqlite/file_place.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "dm/sqlite/new_file.h"

namespace dm {

static bool refuse(problem& why, int32_t code, int detail, std::string sentence) {
  why.code = code;
  why.detail = detail;
  why.sentence = std::move(sentence);
  return false;
}

// --- What is there ----------------------------------------------------------------------------

// Whether the effective user may access the file in that mode. The real user does not count: the
// system tests the engine's accesses by the effective one too.
static bool is_allowed(const std::string& path, int mode) {
  return faccessat(AT_FDCWD, path.c_str(), mode, AT_EACCESS) == 0;
}

static std::string folder_of(const std::string& path) {
  return path.substr(0, path.rfind('/') + 1);
}

static const char* kind_of(mode_t mode) {
  switch (mode & S_IFMT) {
    case S_IFDIR:
      return " is no file but a directory.";
    case S_IFIFO:
      return " is no file but a named pipe.";
    case S_IFSOCK:
      return " is no file but a socket.";
    default:
      return " is no file but a device.";
  }
}

static bool has_one_name(const std::string& path, const struct stat& file, problem& why) {
  if (file.st_nlink <= 1) return true;
  return refuse(why, TAV_ERR_STORAGE, EMLINK,
                join({"Dictionary ", quoted(path), " has ", std::to_string(file.st_nlink),
                      " names (hard links), and what is written under one is lost under the "
                      "others; leave it one, or use a copy of it."}));
}

static bool cannot_be_found(const std::string& path, int error, problem& why) {
  if (error != ENOENT) {
    return refuse(
        why, TAV_ERR_STORAGE, error,
        join({"Dictionary ", quoted(path), " cannot be read: ", std::strerror(error), "."}));
  }
  return refuse(why, TAV_ERR_NOT_FOUND, ENOENT,
                join({"Dictionary ", quoted(path),
                      " does not exist; correct the entry "
                      "'dictionary' of section [dm], or make it with 'tav_dict init'."}));
}

// False, with the problem, where one of the engine's names beside the dictionary is taken by
// something that is no file: the engine would open it unseen, and wait for ever for a pipe.
static bool has_files_beside(const std::string& path, const std::string& file, problem& why) {
  struct stat found {};
  for (const char* ending : {"-wal", "-shm", "-journal"}) {
    if (lstat((file + ending).c_str(), &found) != 0 || S_ISREG(found.st_mode)) continue;
    return refuse(why, TAV_ERR_STORAGE, EINVAL,
                  join({"Dictionary ", quoted(path), " cannot be opened beside ",
                        quoted(file + ending), ", which is no file; move that away."}));
  }
  return true;
}

bool find_place(sqlite_store& store, problem& why) {
  const std::string& path = store.path;
  const std::unique_ptr<char, decltype(&std::free)> target(realpath(path.c_str(), nullptr),
                                                           std::free);
  if (target == nullptr) return cannot_be_found(path, errno, why);
  store.file = target.get();
  if (stat(target.get(), &store.opened) != 0) return cannot_be_found(path, errno, why);
  if (!S_ISREG(store.opened.st_mode)) {
    why.is_damage = true;
    return refuse(why, TAV_ERR_STORAGE, S_ISDIR(store.opened.st_mode) ? EISDIR : EINVAL,
                  join({"Dictionary ", quoted(path), kind_of(store.opened.st_mode)}));
  }
  if (!is_allowed(store.file, R_OK)) return cannot_be_found(path, errno, why);
  store.is_onlooker = !is_allowed(store.file, W_OK) || !is_allowed(folder_of(store.file), W_OK);
  return has_one_name(path, store.opened, why) && has_files_beside(path, store.file, why);
}

// --- Whether it is still there ----------------------------------------------------------------

bool is_in_place(const sqlite_store& store) {
  struct stat now {};
  int has_moved = 0;
  // The engine compares the inode number of the open file with that of the file at its path.
  sqlite3_file_control(store.db, "main", SQLITE_FCNTL_HAS_MOVED, &has_moved);
  return has_moved == 0 && stat(store.path.c_str(), &now) == 0 &&
         now.st_dev == store.opened.st_dev && now.st_ino == store.opened.st_ino;
}

bool may_commit(const sqlite_store& store, problem& why) {
  if (!is_in_place(store)) {
    return refuse(why, TAV_ERR_STORAGE, ESTALE,
                  join({"Dictionary ", quoted(store.path),
                        " was moved or replaced since it was opened; nothing of the operation is "
                        "stored; run again."}));
  }
  struct stat now {};
  return stat(store.path.c_str(), &now) != 0 || has_one_name(store.path, now, why);
}

// --- What stands beside it --------------------------------------------------------------------

bool has_changes_beside(const std::string& file) {
  struct stat found {};
  for (const char* ending : {"-wal", "-journal"}) {
    if (stat((file + ending).c_str(), &found) == 0 && found.st_size > 0) return true;
  }
  return false;
}

// Whether a process holds a lock on the file, and which ("unknown" where the system does not tell).
// Closing it releases this process's own locks on it, but it has none: it is making the dictionary.
static bool is_held(const std::string& file, std::string& holder) {
  const int fd = open(file.c_str(), O_RDONLY | O_NONBLOCK | O_NOFOLLOW | O_CLOEXEC);
  if (fd < 0) return false;
  struct flock lock {};
  lock.l_type = F_WRLCK;
  const bool held = fcntl(fd, F_GETLK, &lock) == 0 && lock.l_type != F_UNLCK;
  close(fd);
  holder = lock.l_pid > 0 ? std::to_string(lock.l_pid) : "unknown";
  return held;
}

// Refuses an empty companion as well, because a process that still has the old dictionary open may
// write to it.
static bool refuse_beside(const std::string& path, const std::string& companion, problem& why) {
  std::string holder;
  if (!is_held(path + "-shm", holder)) {
    return refuse(why, TAV_ERR_CONFLICT, EEXIST,
                  join({"Dictionary ", quoted(path), " cannot be made: ", quoted(companion),
                        " is left over from another one of that name; move it away."}));
  }
  return refuse(why, TAV_ERR_CONFLICT, EEXIST,
                join({"Dictionary ", quoted(path),
                      " cannot be made: a process still has another one of that name open, with ",
                      quoted(companion), "; end it first (process ", holder, ")."}));
}

bool is_free(const std::string& path, problem& why) {
  struct stat found {};
  if (lstat(path.c_str(), &found) == 0) return cannot_make(path, EEXIST, why);
  for (const char* ending : {"-wal", "-shm", "-journal"}) {
    if (lstat((path + ending).c_str(), &found) == 0) return refuse_beside(path, path + ending, why);
  }
  return true;
}

}  // namespace dm
