#include "dd/fold.h"

int dd_compare(const char* a, const char* b) {
  for (; *a != '\0' && (*a == *b || dd_fold(*a) == dd_fold(*b)); ++a) ++b;
  return dd_fold(*a) - dd_fold(*b);
}

uint32_t dd_hash(const char* text) {
  uint64_t hash = 0xcbf29ce484222325u;
  for (; *text != '\0'; ++text) hash = (hash ^ dd_fold(*text)) * 0x9e3779b97f4a7c15u;
  return static_cast<uint32_t>(hash >> 32);
}
