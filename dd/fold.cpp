#include "dd/fold.h"

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
  constexpr size_t STEP = sizeof(uint64_t);
  const size_t length = std::strlen(text);
  uint64_t hash = length;
  const auto mix = [&hash](uint64_t bytes) {
    hash = (hash ^ (bytes | SMALL)) * MIX;
    hash ^= hash >> 32;
  };
  size_t done = 0;
  for (uint64_t bytes; done + STEP <= length; done += STEP) {
    std::memcpy(&bytes, text + done, STEP);
    mix(bytes);
  }
  uint64_t rest = 0;
  for (size_t i = done; i < length; ++i) {
    rest = rest << 8 | static_cast<unsigned char>(text[i]);
  }
  mix(rest);
  return static_cast<uint32_t>(hash ^ (hash >> 29));
}
