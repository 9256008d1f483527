#include <ini.h>

#include <cstring>
#include <new>

#include "dd/vantor.h"
#include "vantor/conf/conf_file.h"

namespace vantor {

namespace {

constexpr int LONGEST_LINE = 8192;      // bytes of inih's line buffer
constexpr size_t LONGEST_SECTION = 49;  // bytes; inih would cut longer names
constexpr char BLANKS[] = " \t\r\v\f";

// The text that inih reads. It is given line by line, so that the number of the line is known.
struct reading {
  const std::string& text;
  conf_file& conf;
  size_t next = 0;
  int line = 0;
  bool is_without_memory = false;  // thrown afterwards: no exception may pass through inih
};

bool ok(const reading& r) {
  return r.conf.error == TAV_ERR_NONE;
}

// The next line without its leading blanks: inih would take an indented entry for a continuation.
std::string next_line(reading& r) {
  size_t end = r.text.find('\n', r.next);
  if (end == std::string::npos) end = r.text.size();
  const std::string line = r.text.substr(r.next, end - r.next);
  r.next = end + 1;
  ++r.line;
  const size_t start = line.find_first_not_of(BLANKS);
  return start == std::string::npos ? "" : line.substr(start);
}

// Refuses lines of which inih would ignore or cut a part without an error.
const char* silent_fault(const std::string& line, int size) {
  if (line.size() + 2 > static_cast<size_t>(size)) return "the line is too long";
  if (line.find('\0') != std::string::npos) return "the line holds a NUL byte";
  if (line[0] != '[') return nullptr;
  const size_t close = line.find(']');
  if (close == std::string::npos) return "the section's name is not closed by \"]\"";
  if (close - 1 > LONGEST_SECTION) return "the section's name is too long";
  const size_t rest = line.find_first_not_of(BLANKS, close + 1);
  if (rest != std::string::npos && line[rest] != ';' && line[rest] != '#') {
    return "the section's name is followed by something; entries begin on the next line";
  }
  return nullptr;
}

char* read_line(char* buffer, int size, void* stream) try {
  reading& r = *static_cast<reading*>(stream);
  if (!ok(r) || r.next >= r.text.size()) return nullptr;
  const std::string line = next_line(r);
  if (const char* fault = silent_fault(line, size)) {
    refuse_conf(r.conf, r.line, fault);
    return nullptr;
  }
  std::memcpy(buffer, line.c_str(), line.size() + 1);
  return buffer;
} catch (const std::bad_alloc&) {
  static_cast<reading*>(stream)->is_without_memory = true;
  return nullptr;
}

int take_entry(void* user, const char* section, const char* name, const char* value) try {
  reading& r = *static_cast<reading*>(user);
  if (!ok(r)) return 1;
  const std::string home = std::strcmp(section, "-") == 0 ? "" : section;
  for (const conf_entry& e : r.conf.entries) {
    if (e.section != home || e.name != name) continue;
    refuse_conf(r.conf, r.line, e.name + " stands already in line " + std::to_string(e.line));
    return 1;
  }
  if (*name == '\0') {
    refuse_conf(r.conf, r.line, "the entry has no name");
    return 1;
  }
  r.conf.entries.push_back({home, name, value, r.line});
  return 1;
} catch (const std::bad_alloc&) {
  static_cast<reading*>(user)->is_without_memory = true;
  return 0;
}

}  // namespace

void refuse_conf(conf_file& conf, int line, const std::string& why) {
  conf.error = TAV_ERR_BAD_CONF;
  conf.problem = conf.path;
  if (line > 0) conf.problem.append(":").append(std::to_string(line));
  conf.problem.append(": ").append(why).append(".");
  conf.entries.clear();
}

void parse_conf(const std::string& text, conf_file& conf) {
  // inih finds a byte order mark itself, but only where nothing stands before it.
  reading r{text, conf};
  const int longest = ini_max_line;
  ini_max_line = LONGEST_LINE;
  const int first_fault = ini_parse_stream(read_line, &r, take_entry, &r);
  ini_max_line = longest;
  // inih gives -2 when it could not allocate memory.
  if (r.is_without_memory || first_fault == -2) throw std::bad_alloc();
  if (first_fault == 0 || (!ok(r) && first_fault >= r.line)) return;
  refuse_conf(conf, first_fault,
              "the line is neither a [section], nor an entry NAME = VALUE, nor a comment");
}

}  // namespace vantor
