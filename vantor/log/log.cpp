#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <string>
#include <utility>

#include "dd/report.h"
#include "vantor/conf/conf_file.h"
#include "vantor/conf/conf_value.h"
#include "vantor/guard.h"
#include "vantor/log/list_text.h"
#include "vantor/log/log_text.h"

using namespace vantor;

static constexpr char MODULE[] = "log";

namespace {

enum tavlog { APPLICATION_LOG, CM_LOG, DM_LOG, TAVLOGS };
constexpr const char* FILE_NAMES[TAVLOGS] = {"tav_deploy.tavlog", "cm.tavlog", "dm.tavlog"};

constexpr int32_t LEVEL_ERRORS = 1;
constexpr int32_t LEVEL_DEBUG = 3;

constexpr int NOT_OPENED = -2;
constexpr int CANNOT_OPEN = -1;

// The log of this process; the files stay open until it ends.
struct log_state {
  bool configured = false;
  bool level_is_set = false;  // by tav_err_set_level, which overrides tav.conf
  int32_t level = LEVEL_ERRORS;
  int files[TAVLOGS] = {NOT_OPENED, NOT_OPENED, NOT_OPENED};
};
log_state state;

const conf_entry* own_entry(tav_common_entry which) {
  return find_entry(process_conf(), program_invocation_short_name, TAV_COMMON_ENTRIES[which]);
}

std::string log_folder() {
  const std::string& folder = process_conf().folder;
  const conf_entry* entry = own_entry(TAV_CONF_LOG_DIR);
  if (entry == nullptr || entry->value.empty()) return folder;
  return entry->value[0] == '/' ? entry->value : folder + "/" + entry->value;
}

void report_level(const conf_entry& entry) {
  const std::string sentence = process_conf().path + ":" + std::to_string(entry.line) + ": \"" +
                               entry.name + "\" must be 1 or 3; 1 is taken.";
  tav_component_log(tav_component::CM, LEVEL_ERRORS, sentence.c_str(), HERE);
}

// Sets `configured` first, because report_level writes a record, which calls this again.
void configure() {
  if (state.configured) return;
  state.configured = true;
  const conf_entry* entry = own_entry(TAV_CONF_LOG_LEVEL);
  if (entry == nullptr) return;
  int32_t level = 0;
  if (!number_from(entry->value, level) || (level != LEVEL_ERRORS && level != LEVEL_DEBUG)) {
    return report_level(*entry);
  }
  if (!state.level_is_set) state.level = level;
}

// Owns a file descriptor; -1 for none.
struct descriptor {
  int fd;
  ~descriptor() {
    if (fd >= 0) close(fd);
  }
};

bool is_roots_alone(const struct stat& folder) {
  const mode_t others = folder.st_gid == 0 ? S_IWOTH : S_IWGRP | S_IWOTH;
  return folder.st_uid == 0 && (folder.st_mode & others) == 0;
}

// Told on standard error, once in a process, because there is no log to tell it in.
void tell_refused(const std::string& folder) {
  static bool told = false;
  if (told) return;
  told = true;
  dd_print_error(
      "%s: No log is written: others than root may write in its folder '%s'. Name one for root "
      "alone with log_dir in tav.conf.\n",
      program_invocation_short_name, folder.c_str());
}

// Opens the log in its folder; CANNOT_OPEN for anything but a regular file. Others may be able to
// write in the folder, so a symbolic link is not followed and a pipe not waited for. Root, who
// could be led to any file, writes no log in such a folder at all.
int open_log_in(const std::string& folder, const char* name) {
  const descriptor at{open(folder.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC)};
  struct stat found;
  if (at.fd < 0 || fstat(at.fd, &found) != 0) return CANNOT_OPEN;
  if (geteuid() == 0 && !is_roots_alone(found)) return tell_refused(folder), CANNOT_OPEN;
  constexpr int SAFELY = O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
  descriptor file{openat(at.fd, name, O_WRONLY | O_CREAT | O_APPEND | SAFELY, 0640)};
  if (file.fd < 0 || fstat(file.fd, &found) != 0 || !S_ISREG(found.st_mode)) return CANNOT_OPEN;
  return std::exchange(file.fd, -1);
}

int open_log(tavlog log) {
  int& file = state.files[log];
  if (file == NOT_OPENED) file = open_log_in(log_folder(), FILE_NAMES[log]);
  return file;
}

// Writes a record with one call, so that those of several processes never mix. A record that cannot
// be written is lost.
void write_record(tavlog log, const std::string& record) {
  const int file = open_log(log);
  if (file == CANNOT_OPEN) return;
  while (write(file, record.data(), record.size()) < 0 && errno == EINTR) {
  }
}

// One record; `append_rest` writes what follows its first line.
template <class Append>
void log_record(tavlog log, int32_t level, const char* message, dd_site site, Append append_rest) {
  // Who wants no records need have no tav.conf.
  if (state.level_is_set && level > state.level) return;
  const int before = errno;
  guarded<void>({nullptr}, [&] {
    configure();
    if (level > state.level) return;
    std::string record;
    append_head(record, level, message, site.module, site.line);
    append_rest(record);
    write_record(log, record);
  });
  errno = before;
}

void nothing(std::string&) {}

}  // namespace

void tav_err_log_msg(int32_t level, const char* message, const char* source, int32_t line) {
  log_record(APPLICATION_LOG, level, message, {source, line}, nothing);
}

void tav_err_log_ebuf(int32_t level, const char* message, const char* source, int32_t line,
                      const tav_ebuf* ebuf) {
  log_record(APPLICATION_LOG, level, message, {source, line}, [ebuf](std::string& record) {
    if (ebuf != nullptr) append_ebuf(record, *ebuf);
  });
}

void tav_log_flist(int32_t level, const char* message, const char* source, int32_t line,
                   tav_flist_t* list) {
  log_record(APPLICATION_LOG, level, message, {source, line},
             [list](std::string& record) { append_list(record, tav_node_of(list)); });
}

void tav_err_set_level(int32_t level) {
  state.level = level;
  state.level_is_set = true;
}

void tav_component_log(tav_component component, int32_t level, const char* sentence, dd_site site) {
  log_record(component == tav_component::CM ? CM_LOG : DM_LOG, level, sentence, site, nothing);
}
