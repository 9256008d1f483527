// The file tav.conf: its path, its entries, and what is wrong with it.
#ifndef VANTOR_CONF_CONF_FILE_H
#define VANTOR_CONF_CONF_FILE_H

#include <cstdint>
#include <string>
#include <vector>

namespace vantor {

struct conf_entry {
  std::string section;  // "" above any section
  std::string name;
  std::string value;
  int line;
};

struct conf_file {
  std::string path;          // "" where no file was found
  std::string folder = ".";  // that relative paths are taken from
  std::vector<conf_entry> entries;
  int32_t error = 0;    // a TAV_ERR_ code: why nothing can be looked up
  std::string problem;  // a sentence about the error for the administrator
};

// Reads the file that the environment and the current folder lead to. Logs nothing, because the log
// itself asks for the configuration. Throws std::bad_alloc.
conf_file read_conf();

// The file of this process, read at the first call.
const conf_file& process_conf();

// The entry that a program sees, or null. Program "-" sees only what stands above any section.
const conf_entry* find_entry(const conf_file& conf, const char* program, const char* name);

// Reads the text's entries into the file, or sets its error and problem.
void parse_conf(const std::string& text, conf_file& conf);

// Makes the file one that cannot be used. The sentence begins with the file (and the line, if any).
void refuse_conf(conf_file& conf, int line, const std::string& why);

}  // namespace vantor

#endif
