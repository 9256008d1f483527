// Names compare without regard to ASCII case, whatever the locale; bytes above 127 are not folded.
#ifndef DD_FOLD_H
#define DD_FOLD_H

#include <cstring>
#include <string_view>

// The byte with an ASCII capital made small.
constexpr unsigned char dd_fold(char c) {
  const auto byte = static_cast<unsigned char>(c);
  return byte >= 'A' && byte <= 'Z' ? static_cast<unsigned char>(byte + ('a' - 'A')) : byte;
}

// Compares two folded texts: gives a number below, equal to or above 0, as strcmp does.
int dd_compare(const char* a, const char* b);

// Whether the folded texts are equal. Most texts that differ do so in the first letter, and most
// that are equal are so in case too; both are tested first, because that is faster.
inline bool dd_equal(const char* a, const char* b) {
  return dd_fold(*a) == dd_fold(*b) && (std::strcmp(a, b) == 0 || dd_compare(a, b) == 0);
}
// The same for a second text that need not end with a NUL byte.
bool dd_equal_to_part(const char* a, std::string_view b);

#endif
