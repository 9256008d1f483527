// A folder that follows the dictionary. A list in it, the manifest, says which files are an
// export's: at every moment it lists at least those that are there.
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <set>
#include <sstream>

#include "dict/export/export.h"
#include "dm/descriptor.h"

namespace dict {

using dm::descriptor;

static constexpr char MANIFEST[] = "export.manifest";
static constexpr char PASSING[] = ".tav_dict_export";  // is written, and then given its name
static constexpr char HEAD[] =
    "# The files that 'tav_dict export' writes and deletes in this folder.";

static constexpr std::string_view DATABASE = "# database ";

namespace {

struct folder {
  const std::string& path;
  int fd;
  dm::problem& why;
};

using names = std::set<std::string>;

}  // namespace

static bool refuse(folder& in, std::string_view name, std::string_view fault) {
  in.why.sentence = dm::join({"Folder ", dm::quoted(in.path), ": ", dm::quoted(name), fault});
  return false;
}

static bool fail_at(folder& in, std::string_view name, std::string_view failure) {
  return refuse(in, name, dm::join({failure, std::strerror(errno), "."}));
}

static bool open_folder(const std::string& path, descriptor& opened, dm::problem& why) {
  const std::string bare = path.substr(0, path.find_last_not_of('/') + 1);
  const std::string target = bare.empty() ? path : bare;  // a slash at the end would follow a link
  if (mkdir(target.c_str(), 0777) == 0 || errno == EEXIST) {
    opened.fd = open(target.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
  }
  if (opened.fd >= 0 && flock(opened.fd, LOCK_EX | LOCK_NB) == 0) return true;
  const bool is_busy = opened.fd >= 0 && errno == EWOULDBLOCK;
  const char* reason = is_busy ? "another export is writing to it" : std::strerror(errno);
  why.sentence = dm::join({"Folder ", dm::quoted(path), " cannot be used: ", reason, "."});
  return false;
}

enum class standing { NOTHING, FILE, OTHER };

static standing look(const folder& in, const std::string& name) {
  struct stat found {};
  if (fstatat(in.fd, name.c_str(), &found, AT_SYMLINK_NOFOLLOW) != 0) return standing::NOTHING;
  return S_ISREG(found.st_mode) ? standing::FILE : standing::OTHER;
}

// Reads a file that is there.
static bool read_file(folder& in, const std::string& name, std::string& text) {
  text.clear();
  const descriptor file(
      openat(in.fd, name.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
  char piece[1 << 16];
  ssize_t size = file.fd < 0 ? -1 : 1;
  while (size > 0 || (size < 0 && file.fd >= 0 && errno == EINTR)) {
    size = read(file.fd, piece, sizeof piece);
    if (size > 0) text.append(piece, static_cast<size_t>(size));
  }
  return size == 0 || fail_at(in, name, " cannot be read: ");
}

// An interrupted run may have left its passing file.
static bool replace_file(folder& in, const std::string& name, std::string_view text) {
  if (look(in, PASSING) == standing::FILE) unlinkat(in.fd, PASSING, 0);
  constexpr int FLAGS = O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC;
  const descriptor file(openat(in.fd, PASSING, FLAGS, 0666));
  if (file.fd >= 0 && dm::write_all(file.fd, text) &&
      renameat(in.fd, PASSING, in.fd, name.c_str()) == 0) {
    return true;
  }
  fail_at(in, name, " cannot be written: ");
  if (file.fd >= 0) unlinkat(in.fd, PASSING, 0);
  return false;
}

static bool begins(std::string_view text, std::string_view start) {
  return text.substr(0, start.size()) == start;
}

// Everybody who may write in the folder may have changed it: only names that an export gives count.
static bool read_manifest(folder& in, const std::string& database, names& listed) {
  const standing found = look(in, MANIFEST);
  if (found == standing::NOTHING) return true;
  if (found == standing::OTHER) return refuse(in, MANIFEST, " is no file; move it away.");
  std::string text;
  if (!read_file(in, MANIFEST, text)) return false;
  std::istringstream lines(text);
  std::string line;
  std::getline(lines, line);
  bool is_ours = line == HEAD && std::getline(lines, line) && begins(line, DATABASE);
  if (is_ours && line.substr(DATABASE.size()) != database) {
    return refuse(in, MANIFEST,
                  dm::join({" lists files of database ", line.substr(DATABASE.size()), ", not of ",
                            database, "; export to another folder."}));
  }
  while (is_ours && std::getline(lines, line)) {
    is_ours = is_file_of_export(line);
    listed.insert(line);
  }
  return is_ours || refuse(in, MANIFEST,
                           " is not as an export writes it; move it away, or export to another "
                           "folder.");
}

static bool write_manifest(folder& in, const std::string& database, const names& listed) {
  std::string text = dm::join({HEAD, "\n", DATABASE, database, "\n"});
  for (const std::string& name : listed) text.append(name).append("\n");
  return replace_file(in, MANIFEST, text);
}

// Before anything is changed.
static bool is_free(folder& in, const std::string& name, const names& listed) {
  const standing found = look(in, name);
  if (found == standing::OTHER) return refuse(in, name, " is no file; move it away.");
  return found == standing::NOTHING || listed.count(name) != 0 ||
         refuse(in, name,
                " stands in the way and was not written by an export; move it away, or export to "
                "another folder.");
}

static bool update_file(folder& in, const export_file& file, folder_changes& changes) {
  std::string before;
  const bool is_there = look(in, file.name) == standing::FILE;
  if (is_there && !read_file(in, file.name, before)) return false;
  const bool is_same = is_there && before == file.text;
  ++(is_same ? changes.unchanged : changes.written);
  return is_same || replace_file(in, file.name, file.text);
}

static bool delete_file(folder& in, const std::string& name, folder_changes& changes) {
  if (look(in, name) == standing::NOTHING) return true;
  ++changes.deleted;
  return unlinkat(in.fd, name.c_str(), 0) == 0 || fail_at(in, name, " cannot be deleted: ");
}

bool update_folder(const std::string& path, const std::string& database,
                   const std::vector<export_file>& files, folder_changes& changes,
                   dm::problem& why) {
  descriptor opened(-1);
  if (!open_folder(path, opened, why)) return false;
  folder in{path, opened.fd, why};
  names listed, wanted;
  if (!read_manifest(in, database, listed)) return false;
  for (const export_file& file : files) wanted.insert(file.name);
  names all = listed;
  all.insert(wanted.begin(), wanted.end());
  for (const std::string& name : all) {
    if (!is_free(in, name, listed)) return false;
  }
  if (all != listed && !write_manifest(in, database, all)) return false;
  for (const export_file& file : files) {
    if (!update_file(in, file, changes)) return false;
  }
  for (const std::string& name : all) {
    if (wanted.count(name) == 0 && !delete_file(in, name, changes)) return false;
  }
  return (all == wanted && look(in, MANIFEST) == standing::FILE) ||
         write_manifest(in, database, wanted);
}

}  // namespace dict
