#include "dict/files.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>

#include "dm/descriptor.h"
#include "syntax/tree.h"

namespace dict {

namespace fs = std::filesystem;
using dm::descriptor;

namespace {

// A file that is gone with the record, unless it has got its name.
struct new_file {
  std::string path;
  descriptor open{-1};
  ~new_file() {
    if (!path.empty()) ::unlink(path.c_str());
  }
};

}  // namespace

static bool cannot_be_read(const std::string& name, const char* reason, dm::problem& why) {
  why.sentence = dm::join({"File ", dm::quoted(name), " cannot be read: ", reason, "."});
  return false;
}

static bool is_left(const std::string& name, std::string_view reason, dm::problem& why) {
  why.sentence = dm::join({"File ", dm::quoted(name), " is left as it is: ", reason, "."});
  return false;
}

// --- Finding -------------------------------------------------------------------------------------

// A link that leads nowhere counts: reading it tells what is wrong. A pipe or a device is no
// definition file, and reading it might never end.
static bool is_definition_file(const fs::directory_entry& entry) {
  std::error_code no_matter;
  const fs::file_type type = entry.status(no_matter).type();
  return entry.path().extension() == ".def" && type != fs::file_type::directory &&
         type != fs::file_type::fifo && type != fs::file_type::socket &&
         type != fs::file_type::character && type != fs::file_type::block;
}

// Appends the files of a folder, and to `folders` those in it.
static void look_into(const std::string& folder, std::vector<std::string>& files,
                      std::vector<std::string>& folders, std::vector<dm::problem>& problems) {
  std::error_code error;
  fs::directory_iterator at(folder, error);
  for (; !error && at != fs::directory_iterator(); at.increment(error)) {
    std::error_code no_matter;
    const bool is_folder = !at->is_symlink(no_matter) && at->is_directory(no_matter);
    if (is_folder) folders.push_back(at->path().string());
    if (is_definition_file(*at)) files.push_back(at->path().string());
  }
  if (!error) return;
  problems.emplace_back();
  problems.back().sentence =
      dm::join({"Folder ", dm::quoted(folder), " cannot be read to its end: ", error.message(),
                "; some of its files were left out."});
}

void find_files(const std::string& named, std::vector<std::string>& files,
                std::vector<dm::problem>& problems) {
  std::error_code error;
  if (named == STANDARD_INPUT || !fs::is_directory(named, error)) return files.push_back(named);
  const size_t first = files.size();
  const size_t known_problems = problems.size();
  std::vector<std::string> folders{named};
  while (!folders.empty()) {
    const std::string folder = std::move(folders.back());
    folders.pop_back();
    look_into(folder, files, folders, problems);
  }
  std::sort(files.begin() + static_cast<ptrdiff_t>(first), files.end());
  if (files.size() > first || problems.size() > known_problems) return;
  problems.emplace_back();
  problems.back().sentence =
      dm::join({"Folder ", dm::quoted(named), " holds no definition file (*.def)."});
}

// --- Reading -------------------------------------------------------------------------------------

// Reads on until the end; 0 or the errno.
static int read_all(int from, std::string& text) {
  for (size_t size = text.size();;) {
    if (size == text.size()) text.resize(size < text.capacity() ? text.capacity() : size * 2);
    const ssize_t count = ::read(from, text.data() + size, text.size() - size);
    if (count < 0 && errno == EINTR) continue;
    if (count > 0) size += static_cast<size_t>(count);
    if (count > 0 && size <= syntax::MOST_BYTES) continue;
    text.resize(size);
    return count < 0 ? errno : count > 0 ? EFBIG : 0;
  }
}

bool read_file(const std::string& name, const std::string& shown, file_content& content,
               dm::problem& why) {
  const bool is_input = name == STANDARD_INPUT;
  const descriptor file{is_input ? ::dup(STDIN_FILENO)
                                 : ::open(name.c_str(), O_RDONLY | O_CLOEXEC)};
  if (file.fd < 0 || ::fstat(file.fd, &content.status) != 0)
    return cannot_be_read(shown, std::strerror(errno), why);
  // One more than it holds, so that the end shows without more room.
  const auto size = static_cast<uint64_t>(std::max<off_t>(content.status.st_size, 1 << 16));
  content.text.reserve(std::min<uint64_t>(size, syntax::MOST_BYTES) + 1);
  const int error = read_all(file.fd, content.text);
  return error == 0 || cannot_be_read(shown, std::strerror(error), why);
}

// --- Replacing -----------------------------------------------------------------------------------

static bool is_same(const struct stat& a, const struct stat& b) {
  return a.st_dev == b.st_dev && a.st_ino == b.st_ino && a.st_size == b.st_size &&
         a.st_mtim.tv_sec == b.st_mtim.tv_sec && a.st_mtim.tv_nsec == b.st_mtim.tv_nsec;
}

static bool may_be_replaced(const std::string& name, const char* path, const file_content& before,
                            dm::problem& why) {
  if (!S_ISREG(before.status.st_mode)) return is_left(name, "it is no regular file", why);
  if (before.status.st_nlink > 1)
    return is_left(name, "it has several names (hard links), of which only one would change", why);
  if (::access(path, W_OK) != 0) return is_left(name, std::strerror(errno), why);
  return true;
}

static bool make_beside(const fs::path& path, new_file& made) {
  std::string pattern = (path.parent_path() / ".tav_dict.XXXXXX").string();
  made.open.fd = ::mkostemp(pattern.data(), O_CLOEXEC);
  if (made.open.fd >= 0) made.path = pattern;
  return made.open.fd >= 0;
}

// Gives the file the owner and then the mode of the other, whose bits a new owner may take away.
static bool give_owner_and_mode(const new_file& made, const struct stat& status, bool& has_owner) {
  struct stat own;
  if (::fstat(made.open.fd, &own) != 0) return false;
  has_owner = (own.st_uid == status.st_uid && own.st_gid == status.st_gid) ||
              ::fchown(made.open.fd, status.st_uid, status.st_gid) == 0;
  return has_owner && ::fchmod(made.open.fd, status.st_mode & 07777) == 0;
}

static text_pieces in_one_piece(std::string_view text) {
  return [text](const text_sink& to) { to(text); };
}

// With errno as the first failure left it.
static bool write_and_sync(int to, const text_pieces& text) {
  int error = 0;
  text([&](std::string_view piece) {
    if (error == 0 && !dm::write_all(to, piece)) error = errno;
  });
  if (error == 0 && ::fsync(to) != 0) error = errno;
  errno = error;
  return error == 0;
}

static bool rename_to(new_file& made, const fs::path& path) {
  if (::rename(made.path.c_str(), path.c_str()) != 0) return false;
  made.path.clear();
  const descriptor folder{::open(path.parent_path().c_str(), O_RDONLY | O_CLOEXEC | O_DIRECTORY)};
  if (folder.fd >= 0) ::fsync(folder.fd);  // the file is whole either way
  return true;
}

static bool replace(const std::string& name, const file_content& before, const text_pieces& text,
                    dm::problem& why) {
  const std::unique_ptr<char, decltype(&std::free)> real(::realpath(name.c_str(), nullptr),
                                                         &std::free);
  if (real == nullptr) return is_left(name, std::strerror(errno), why);
  if (!may_be_replaced(name, real.get(), before, why)) return false;
  const fs::path path = real.get();
  new_file made;
  bool has_owner = true;
  if (!make_beside(path, made) || !give_owner_and_mode(made, before.status, has_owner)) {
    return is_left(name, has_owner ? std::strerror(errno) : "its owner and group cannot be kept",
                   why);
  }
  if (!write_and_sync(made.open.fd, text)) return is_left(name, std::strerror(errno), why);
  struct stat now;
  if (::stat(path.c_str(), &now) != 0 || !is_same(now, before.status))
    return is_left(name, "somebody has changed it since it was read", why);
  return rename_to(made, path) || is_left(name, std::strerror(errno), why);
}

bool replace_file(const std::string& name, const file_content& before, std::string_view text,
                  dm::problem& why) {
  return replace(name, before, in_one_piece(text), why);
}

// --- Writing -------------------------------------------------------------------------------------

static bool cannot_be_written(const std::string& name, dm::problem& why) {
  why.sentence =
      dm::join({"File ", dm::quoted(name), " cannot be written: ", std::strerror(errno), "."});
  return false;
}

// The mode that a new file gets. Nobody else makes files meanwhile: there is one thread.
static mode_t new_mode() {
  const mode_t mask = ::umask(0);
  ::umask(mask);
  return 0666 & ~mask;
}

// Gives the file its name, unless there is one of that name by now.
static bool name_new(new_file& made, const std::string& name) {
  if (::renameat2(AT_FDCWD, made.path.c_str(), AT_FDCWD, name.c_str(), RENAME_NOREPLACE) == 0) {
    made.path.clear();
    return true;
  }
  return errno == EINVAL && ::link(made.path.c_str(), name.c_str()) == 0;
}

// It has its name only once it is whole.
static bool write_new(const std::string& name, const text_pieces& text, dm::problem& why) {
  new_file made;
  const bool is_named = make_beside(name, made) && ::fchmod(made.open.fd, new_mode()) == 0 &&
                        write_and_sync(made.open.fd, text) && name_new(made, name);
  return is_named || cannot_be_written(name, why);
}

static bool write_to(const std::string& name, const text_pieces& text, dm::problem& why) {
  const descriptor open{::open(name.c_str(), O_WRONLY | O_CLOEXEC)};
  const bool is_open = open.fd >= 0;
  // A pipe or a terminal cannot be synchronised (EINVAL), and need not.
  return (is_open && (write_and_sync(open.fd, text) || errno == EINVAL)) ||
         cannot_be_written(name, why);
}

bool write_file(const std::string& name, std::string_view text, dm::problem& why) {
  return write_file(name, in_one_piece(text), why);
}

bool write_file(const std::string& name, const text_pieces& text, dm::problem& why) {
  file_content before{};
  if (::stat(name.c_str(), &before.status) != 0) return write_new(name, text, why);
  if (S_ISREG(before.status.st_mode)) return replace(name, before, text, why);
  return write_to(name, text, why);
}

}  // namespace dict
