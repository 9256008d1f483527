// Names compare without regard to ASCII case; bytes above 127 are themselves, whatever the locale.
#ifndef DD_FOLD_H
#define DD_FOLD_H

#include <cstddef>
#include <cstdint>
#include <cstring>

// The byte with an ASCII capital made small.
inline unsigned char dd_fold(char c) {
  const auto byte = static_cast<unsigned char>(c);
  return byte >= 'A' && byte <= 'Z' ? static_cast<unsigned char>(byte + ('a' - 'A')) : byte;
}

// Compares two texts folded: below, equal to or above 0 as by strcmp.
int dd_compare(const char* a, const char* b);

// Texts that differ mostly do so in the first letter; equal ones are mostly equal to the letter,
// which the C library tells faster.
inline bool dd_equal(const char* a, const char* b) {
  return dd_fold(*a) == dd_fold(*b) && (std::strcmp(a, b) == 0 || dd_compare(a, b) == 0);
}

// A hash of the folded text: equal for texts that compare equal.
uint32_t dd_hash(const char* text, size_t length);
inline uint32_t dd_hash(const char* text) {
  return dd_hash(text, std::strlen(text));
}

#endif
