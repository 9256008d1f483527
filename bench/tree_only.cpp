// A definition file into a tree.
#include <cstdio>

#include "syntax/tree.h"

static std::string content(FILE* in) {
  std::string text;
  std::fseek(in, 0, SEEK_END);
  text.resize(static_cast<size_t>(std::ftell(in)));
  std::rewind(in);
  text.resize(std::fread(text.data(), 1, text.size(), in));
  return text;
}

int main(int argc, char** argv) {
  FILE* in = argc == 2 ? std::fopen(argv[1], "r") : nullptr;
  if (in == nullptr) return 2;
  const syntax::tree tree = syntax::read(content(in));
  std::printf("%zu definitions\n", tree.definitions.size());
  std::fclose(in);
  return 0;
}
