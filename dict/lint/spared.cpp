#include "dict/lint/spared.h"

#include <algorithm>
#include <filesystem>

#include "dict/database_files.h"
#include "dict/files.h"

namespace dict {

namespace fs = std::filesystem;

bool is_spared(const char* option, const std::string& written, const std::vector<std::string>& read,
               dm::problem& why) {
  std::error_code error;
  if (!spares_companions(written, why)) return false;
  if (!fs::is_regular_file(written, error)) return true;
  const auto is_same = [&](const std::string& name) {
    return fs::equivalent(written, name == STANDARD_INPUT ? "/dev/stdin" : name, error);
  };
  if (std::ranges::none_of(read, is_same)) return true;
  why.sentence = dm::join({option, " would replace ", dm::quoted(written),
                           ", which this run reads: name another file."});
  return false;
}

}  // namespace dict
