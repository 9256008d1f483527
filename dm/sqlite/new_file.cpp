#include "dm/sqlite/new_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <optional>
#include <string_view>

#include "dm/blocked_signals.h"
#include "dm/descriptor.h"

namespace dm {

// A file without a name (O_TMPFILE), or with a temporary one where the file system cannot do that.
struct nameless_file {
  explicit nameless_file(const std::string& folder) : fd(open_in(folder)) {
    if (fd >= 0 || (errno != EOPNOTSUPP && errno != EISDIR && errno != ENOENT)) return;
    blocked.emplace();
    passing_name = folder + "tav_dict.XXXXXX";
    fd = mkostemp(passing_name.data(), O_CLOEXEC);
    if (fd < 0) forget();
  }
  ~nameless_file() {
    if (fd >= 0) close(fd);
    if (!passing_name.empty()) {
      unlink(passing_name.c_str());
      forget();
    }
  }
  nameless_file(const nameless_file&) = delete;
  nameless_file& operator=(const nameless_file&) = delete;

  // Gives the file its name; false when there is one already, or for another reason in errno.
  bool name(const std::string& path) {
    if (passing_name.empty()) {
      const std::string own = "/proc/self/fd/" + std::to_string(fd);
      return linkat(AT_FDCWD, own.c_str(), AT_FDCWD, path.c_str(), AT_SYMLINK_FOLLOW) == 0;
    }
    // Renames instead of linking and unlinking: a process killed in between would leave a file with
    // two names, and changes written under one of them would be lost.
    const bool renamed =
        renameat2(AT_FDCWD, passing_name.c_str(), AT_FDCWD, path.c_str(), RENAME_NOREPLACE) == 0;
    if (renamed) forget();
    // Network file systems refuse RENAME_NOREPLACE. If the process is killed between link and
    // unlink there, two names are left, and opening refuses the file.
    return renamed || (errno == EINVAL && link(passing_name.c_str(), path.c_str()) == 0);
  }

  int fd;
  std::string passing_name;
  std::optional<blocked_signals> blocked{};  // while there is a passing name

 private:
  static int open_in(const std::string& folder) {
    return open(folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0600);
  }
  void forget() {
    passing_name.clear();
    blocked.reset();
  }
};

// Syncs the folder too: the file's name must be on the disk.
static bool sync_folder(const std::string& folder) {
  const int fd = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (fd < 0) return false;
  const bool synced = fsync(fd) == 0;
  close(fd);
  return synced;
}

bool cannot_make(const std::string& path, int error, problem& why) {
  why.detail = error;
  why.code = error == EEXIST ? TAV_ERR_CONFLICT : TAV_ERR_STORAGE;
  why.sentence = join({"Dictionary ", quoted(path), " cannot be made: ", std::strerror(error),
                       error == EEXIST ? "; it is left as it is." : "."});
  return false;
}

static bool copy_all(int from, int to) {
  static constexpr size_t PIECE = 1 << 18;
  const std::unique_ptr<char[]> piece(new char[PIECE]);
  for (off_t at = 0;;) {
    const ssize_t count = pread(from, piece.get(), PIECE, at);
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return count == 0;
    if (!write_all(to, {piece.get(), static_cast<size_t>(count)})) return false;
    at += count;
  }
}

bool make_file(const std::string& path, int from, problem& why) {
  const std::string folder = path.substr(0, path.rfind('/') + 1);
  nameless_file file(folder);
  if (file.fd >= 0 && fchmod(file.fd, 0600) == 0 && copy_all(from, file.fd) &&
      fsync(file.fd) == 0 && file.name(path) && sync_folder(folder)) {
    return true;
  }
  return cannot_make(path, errno, why);
}

}  // namespace dm
