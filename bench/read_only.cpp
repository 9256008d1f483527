// The reader alone: a definition file into lists, and nothing else.
#include <cstdio>

#include "dd/list.h"
#include "dparse/dparse.h"

int main(int argc, char** argv) {
  FILE* in = argc == 2 ? std::fopen(argv[1], "r") : nullptr;
  if (in == nullptr) return 2;
  dd_list fields(DD_FIELDS, dd_flist(tav_flist_create(nullptr)));
  dd_list classes(DD_CLASSES, dd_flist(tav_flist_create(nullptr)));
  dd_list impls(DD_CLASSES, dd_flist(tav_flist_create(nullptr)));
  const int result = dparseDefFile(in, &fields, &classes, &impls);
  std::printf("%d fields, %d classes\n", fields.count(nullptr), classes.count(nullptr));
  std::fclose(in);
  return result < 1 ? 1 : 0;
}
