#include "dict/lint/same_files.h"

#include <map>

namespace dict {

std::vector<uint32_t> same_files(const std::vector<struct stat>& statuses) {
  std::map<std::pair<dev_t, ino_t>, uint32_t> known;
  std::vector<uint32_t> first;
  for (const struct stat& each : statuses) {
    const auto number = static_cast<uint32_t>(first.size());
    const bool is_file = S_ISREG(each.st_mode);
    first.push_back(is_file
                        ? known.emplace(std::pair(each.st_dev, each.st_ino), number).first->second
                        : number);
  }
  return first;
}

}  // namespace dict
