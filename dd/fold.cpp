#include "dd/fold.h"

#include <algorithm>
#include <cstring>

int dd_compare(const char* a, const char* b) {
  for (; *a != '\0' && (*a == *b || dd_fold(*a) == dd_fold(*b)); ++a) ++b;
  return dd_fold(*a) - dd_fold(*b);
}

// Eight bytes at a time. Setting bit 5 makes capitals small; what else it makes equal only
// collides.
uint32_t dd_hash(const char* text) {
  constexpr uint64_t SMALL = 0x2020202020202020u;
  constexpr uint64_t MIX = 0x9e3779b97f4a7c15u;
  const size_t length = std::strlen(text);
  uint64_t hash = length;
  for (size_t done = 0; done < length; done += sizeof(uint64_t)) {
    uint64_t bytes = 0;
    std::memcpy(&bytes, text + done, std::min(sizeof bytes, length - done));
    hash = (hash ^ (bytes | SMALL)) * MIX;
    hash ^= hash >> 32;
  }
  return static_cast<uint32_t>(hash ^ (hash >> 29));
}
