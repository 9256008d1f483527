// The reader alone, as the tool uses it: a definition file into lists, which are left to the end of
// the process.
#include <cstdio>

#include "dd/list.h"
#include "dparse/read/reader.h"

static char read_ahead[1 << 16];

int main(int argc, char** argv) {
  FILE* in = argc == 2 ? std::fopen(argv[1], "r") : nullptr;
  if (in == nullptr) return 2;
  std::setvbuf(in, read_ahead, _IOFBF, sizeof read_ahead);
  dd_list fields(DD_FIELDS, dd_flist(tav_flist_create(nullptr)));
  dd_list classes(DD_CLASSES, dd_flist(tav_flist_create(nullptr)));
  dd_list impls(DD_CLASSES, dd_flist(tav_flist_create(nullptr)));
  const int result = dparseDefFile(in, &fields, &classes, &impls);
  std::printf("%d fields, %d classes\n", fields.count(nullptr), classes.count(nullptr));
  for (dd_list* list : {&fields, &classes, &impls}) list->leave();
  std::fclose(in);
  return result < 1 ? 1 : 0;
}
