#include "dd/fold.h"

#include <cstring>

int dd_compare(const char* a, const char* b) {
  for (; *a != '\0' && (*a == *b || dd_fold(*a) == dd_fold(*b)); ++a) ++b;
  return dd_fold(*a) - dd_fold(*b);
}

// Eight bytes at a time, the last eight of a long text whether or not they overlap those before.
// Setting bit 5 makes capitals small; what else it makes equal only collides.
uint32_t dd_hash(const char* text, size_t length) {
  constexpr uint64_t SMALL = 0x2020202020202020u;
  constexpr uint64_t MIX = 0x9e3779b97f4a7c15u;
  constexpr size_t STEP = sizeof(uint64_t);
  uint64_t hash = length;
  const auto mix = [&hash](uint64_t bytes) {
    hash = (hash ^ (bytes | SMALL)) * MIX;
    hash ^= hash >> 32;
  };
  uint64_t bytes = 0;
  for (size_t done = 0; done + STEP < length; done += STEP) {
    std::memcpy(&bytes, text + done, STEP);
    mix(bytes);
  }
  if (length >= STEP) {
    std::memcpy(&bytes, text + length - STEP, STEP);
  } else {
    for (size_t i = 0; i < length; ++i) bytes = bytes << 8 | static_cast<unsigned char>(text[i]);
  }
  mix(bytes);
  return static_cast<uint32_t>(hash * MIX >> 32);
}
