// Files that are read whole, and replaced whole or not at all.
#ifndef DICT_FILES_H
#define DICT_FILES_H

#include <sys/stat.h>

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "dm/problem.h"

namespace dict {

inline constexpr char STANDARD_INPUT[] = "-";

// A text in pieces, so that a long one need not be kept: calls with each of them.
using text_sink = std::function<void(std::string_view)>;
using text_pieces = std::function<void(const text_sink& to)>;

struct file_content {
  std::string text;
  struct stat status;  // as it was read
};

// Appends the file, or of a folder all files *.def below, sorted; links to folders are not followed
// there. Appends what could not be looked at to the problems.
void find_files(const std::string& named, std::vector<std::string>& files,
                std::vector<dm::problem>& problems);

// False with the reason, which calls the file what is shown.
bool read_file(const std::string& name, const std::string& shown, file_content& content,
               dm::problem& why);

// Puts a file with that text in the place of the one that was read; what a link names is replaced,
// not the link. Owner and mode stay. A file that has other names too, an owner that cannot be
// given to another file, or that somebody has changed since, is left as it is: false with the
// reason.
bool replace_file(const std::string& name, const file_content& before, std::string_view text,
                  dm::problem& why);

// Writes a file of that text: a new one, or in the place of a regular one as replace_file does; a
// device or a pipe takes it as it is. False with the reason; a new file is gone then.
bool write_file(const std::string& name, std::string_view text, dm::problem& why);
bool write_file(const std::string& name, const text_pieces& text, dm::problem& why);

}  // namespace dict

#endif
