// Runs a target on every file of a folder, where no fuzzing engine is linked.
#include <filesystem>
#include <fstream>
#include <sstream>

#include "tests/fuzz/target.h"

int main(int argc, char** argv) {
  int files = 0;
  for (const auto& file : std::filesystem::directory_iterator(argc > 1 ? argv[1] : ".")) {
    std::stringstream text;
    text << std::ifstream(file.path(), std::ios::binary).rdbuf();
    std::fprintf(stderr, "%s\n", file.path().c_str());
    const std::string bytes = text.str();
    LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
    ++files;
  }
  return files > 0 ? 0 : 1;
}
