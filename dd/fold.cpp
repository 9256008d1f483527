#include "dd/fold.h"

int dd_compare(const char* a, const char* b) {
  for (; *a != '\0' && (*a == *b || dd_fold(*a) == dd_fold(*b)); ++a) ++b;
  return dd_fold(*a) - dd_fold(*b);
}

bool dd_equal_to_part(const char* a, std::string_view b) {
  if (std::strncmp(a, b.data(), b.size()) == 0) return a[b.size()] == '\0';
  size_t same = 0;
  while (same < b.size() && dd_fold(a[same]) == dd_fold(b[same])) ++same;
  return same == b.size() && a[same] == '\0';
}
