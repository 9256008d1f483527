#include "vantor/conf_file.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "vantor/data_manager.h"

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

bool is_there(const char* path) {
  struct stat found;
  return stat(path, &found) == 0 || (errno != ENOENT && errno != ENOTDIR);
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

// "password = x" in a key-value string, or "//user:password@" in a URL.
bool holds_password(const std::string& dictionary) {
  for (size_t at = 0; (at = dictionary.find("password", at)) != std::string::npos;) {
    at = dictionary.find_first_not_of(" \t", at + std::strlen("password"));
    if (at == std::string::npos) break;
    if (dictionary[at] == '=') return true;
  }
  const size_t host = dictionary.find("://");
  if (host == std::string::npos) return false;
  const std::string rest = dictionary.substr(host + 3);
  const std::string login = rest.substr(0, rest.find_first_of("/?"));
  const size_t at_sign = login.rfind('@');
  return at_sign != std::string::npos && login.find(':') < at_sign;
}

void check_secrecy(std::FILE* file, conf_file& conf) {
  struct stat found;
  if (fstat(fileno(file), &found) == 0 && (found.st_mode & (S_IRGRP | S_IROTH)) == 0) return;
  for (const conf_entry& e : conf.entries) {
    if (e.name != "dictionary" || !holds_password(e.value)) continue;
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
  const file_owner file(std::fopen(conf.path.c_str(), "re"));
  if (file == nullptr) {
    refuse_conf(conf, 0,
                std::string("cannot be opened: ") + std::strerror(errno) +
                    "; make it readable, or correct or unset the environment variable " + VARIABLE);
    return conf;
  }
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

bool tav_text_holds_password(std::string_view dictionary) {
  return vantor::holds_password(std::string(dictionary));
}
