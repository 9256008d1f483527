// Names compare without regard to ASCII case; bytes above 127 are themselves, whatever the locale.
#ifndef DD_FOLD_H
#define DD_FOLD_H

#include <cstring>
#include <string_view>

// The byte with an ASCII capital made small.
constexpr unsigned char dd_fold(char c) {
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
// The same for a part of a text, which ends where its length says.
bool dd_equal_to_part(const char* a, std::string_view b);

#endif
