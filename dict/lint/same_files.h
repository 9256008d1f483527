// Files that are named more than once.
#ifndef DICT_LINT_SAME_FILES_H
#define DICT_LINT_SAME_FILES_H

#include <sys/stat.h>

#include <cstdint>
#include <vector>

namespace dict {

// Of each the number of the first one that is the same file.
std::vector<uint32_t> same_files(const std::vector<struct stat>& statuses);

}  // namespace dict

#endif
