// Hashes of names and numbers. They depend on a key that the program draws when it starts, so that
// whoever writes a definition file cannot choose names that collide. Nothing may be stored, sent or
// ordered by a hash.
#ifndef DD_HASH_H
#define DD_HASH_H

#include <cstddef>
#include <cstdint>
#include <cstring>

struct dd_hash_key {
  uint64_t start;
  uint64_t factor;         // odd
  uint64_t length_factor;  // odd
};

// Drawn before main; the build option TAV_HASH_KEY fixes it.
extern const dd_hash_key DD_HASH_KEY;

// Both halves of the product, so that every bit of either number changes every bit of the result.
inline uint64_t dd_multiply(uint64_t a, uint64_t b) {
  const auto product = static_cast<unsigned __int128>(a) * b;
  return static_cast<uint64_t>(product) ^ static_cast<uint64_t>(product >> 64);
}

// A second multiplication: after one, numbers at equal distances would give equally spaced hashes.
inline uint32_t dd_upper_half(uint64_t product) {
  return static_cast<uint32_t>(product * DD_HASH_KEY.factor >> 32);
}

// A hash of the folded text: equal for texts that compare equal.
uint32_t dd_hash(const char* text, size_t length);
inline uint32_t dd_hash(const char* text) {
  return dd_hash(text, std::strlen(text));
}

inline uint32_t dd_hash_number(int32_t number) {
  const uint64_t started = static_cast<uint32_t>(number) ^ DD_HASH_KEY.start;
  return dd_upper_half(dd_multiply(started, DD_HASH_KEY.factor));
}

// The hashes of prefixes of one text, each longer than the one before. Reads the text only once.
class dd_hash_of_beginnings {
 public:
  explicit dd_hash_of_beginnings(const char* text) : text_(text) {}
  // dd_hash(text, length)
  uint32_t next(size_t length);

 private:
  const char* text_;
  uint64_t state_ = DD_HASH_KEY.start;
  size_t done_ = 0;
};

#endif
