#include "vantor/conf/conf_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "dd/vantor.h"
#include "vantor/binding.h"

namespace vantor {

namespace {

constexpr char VARIABLE[] = "TAV_CONF";
constexpr size_t LARGEST = 1 << 20;  // bytes; a file beyond that is no tav.conf

struct close_file {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using file_owner = std::unique_ptr<std::FILE, close_file>;

std::string folder_of(const std::string& path) {
  const size_t slash = path.rfind('/');
  if (slash == std::string::npos) return ".";
  return slash == 0 ? "/" : path.substr(0, slash);
}

// A link to nothing is there: what it should lead to is missed, not looked for elsewhere.
bool is_there(const char* path) {
  struct stat found;
  return lstat(path, &found) == 0 || (errno != ENOENT && errno != ENOTDIR);
}

// The first of the places where a file stands; "" where there is none.
std::string locate() {
  const char* named = std::getenv(VARIABLE);
  if (named != nullptr && *named != '\0') return named;
  for (const char* place : {"./tav.conf", "/etc/tav/tav.conf"}) {
    if (is_there(place)) return place;
  }
  return "";
}

void refuse_unopened(conf_file& conf, const std::string& why) {
  refuse_conf(conf, 0, why + ", or correct or unset the environment variable " + VARIABLE);
}

// Opens the file; null when that fails, with the file's error set. O_NONBLOCK, because opening a
// pipe would wait for a writer.
file_owner open_conf(conf_file& conf) {
  const int fd = open(conf.path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
  struct stat found;
  if (fd >= 0 && fstat(fd, &found) == 0 && !S_ISREG(found.st_mode)) {
    close(fd);
    return refuse_unopened(conf, "is no regular file; put one there"), nullptr;
  }
  file_owner file(fd >= 0 ? fdopen(fd, "r") : nullptr);
  if (file != nullptr) return file;
  const std::string reason = std::strerror(errno);
  if (fd >= 0) close(fd);
  return refuse_unopened(conf, "cannot be opened: " + reason + "; make it readable"), nullptr;
}

// Gives the text, or sets the file's error.
std::string read_text(std::FILE* file, conf_file& conf) {
  std::string text;
  char piece[4096];
  for (size_t got; (got = std::fread(piece, 1, sizeof piece, file)) > 0;) {
    text.append(piece, got);
    if (text.size() > LARGEST) break;
  }
  if (std::ferror(file) != 0) {
    refuse_conf(conf, 0, std::string("cannot be read: ") + std::strerror(errno));
  } else if (text.size() > LARGEST) {
    refuse_conf(conf, 0, "the file is too large for a configuration");
  }
  return text;
}

// Refuses a file that others can read and that may hold a password. Looks at all entries, because a
// misspelt one may hold it as well.
void check_secrecy(std::FILE* file, conf_file& conf) {
  struct stat found;
  if (fstat(fileno(file), &found) == 0 && (found.st_mode & (S_IRGRP | S_IROTH)) == 0) return;
  for (const conf_entry& e : conf.entries) {
    if (!tav_text_holds_password(e.value) && !tav_text_holds_password(e.name + "=")) continue;
    return refuse_conf(conf, e.line,
                       "the file holds a password and others can read it; make it yours alone "
                       "(chmod 600), or keep the password in PostgreSQL's own password file");
  }
}

void refuse_absent(conf_file& conf) {
  conf.error = TAV_ERR_NOT_FOUND;
  conf.problem = std::string("No tav.conf was found; write one to ./tav.conf or ") +
                 "/etc/tav/tav.conf, or name one in the environment variable " + VARIABLE + ".";
}

}  // namespace

conf_file read_conf() {
  conf_file conf;
  conf.path = locate();
  if (conf.path.empty()) {
    refuse_absent(conf);
    return conf;
  }
  conf.folder = folder_of(conf.path);
  const file_owner file = open_conf(conf);
  if (file == nullptr) return conf;
  const std::string text = read_text(file.get(), conf);
  if (conf.error == TAV_ERR_NONE) parse_conf(text, conf);
  if (conf.error == TAV_ERR_NONE) check_secrecy(file.get(), conf);
  return conf;
}

const conf_file& process_conf() {
  // Never freed: the log may need it until the very end of the process.
  static const conf_file* const conf = new conf_file(read_conf());
  return *conf;
}

static const conf_entry* find_in(const conf_file& conf, const char* section, const char* name) {
  for (const conf_entry& e : conf.entries) {
    if (e.section == section && e.name == name) return &e;
  }
  return nullptr;
}

const conf_entry* find_entry(const conf_file& conf, const char* program, const char* name) {
  if (std::strcmp(program, "-") != 0) {
    if (const conf_entry* found = find_in(conf, program, name)) return found;
  }
  return find_in(conf, "", name);
}

}  // namespace vantor
