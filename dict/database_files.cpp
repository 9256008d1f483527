#include "dict/database_files.h"

#include <filesystem>
#include <fstream>

namespace dict {

namespace fs = std::filesystem;

static bool is_database(const fs::path& file) {
  static constexpr std::string_view HEAD = "SQLite format 3";
  std::error_code error;
  if (!fs::is_regular_file(file, error)) return false;
  std::string head(HEAD.size(), '\0');
  std::ifstream(file, std::ios::binary).read(head.data(), static_cast<ptrdiff_t>(head.size()));
  return head == HEAD;
}

bool spares_database(const char* option, const std::string& written, dm::problem& why) {
  if (!is_database(written)) return true;
  why.sentence = dm::join({option, " would replace ", dm::quoted(written),
                           ", which is a database: name another file."});
  return false;
}

bool spares_companions(const std::string& written, dm::problem& why) {
  std::error_code error;
  const std::string bare = written.substr(0, written.find_last_not_of('/') + 1);
  const std::string real = fs::weakly_canonical(bare, error).string();
  for (const std::string_view ending : {"-wal", "-shm", "-journal"}) {
    if (error || !real.ends_with(ending)) continue;
    const std::string database = real.substr(0, real.size() - ending.size());
    if (!is_database(database)) continue;
    const bool is_link = !bare.ends_with(ending);
    const std::string shown = is_link ? database : bare.substr(0, bare.size() - ending.size());
    why.sentence = dm::join({dm::quoted(written), " is the name of a file that database ",
                             dm::quoted(shown), " keeps beside it: choose another name."});
    return false;
  }
  return true;
}

}  // namespace dict
