// The characters of a JSON text that stand for themselves, found eight at a time.
#ifndef DM_JSON_RUN_H
#define DM_JSON_RUN_H

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace dm {

inline constexpr size_t WORD = sizeof(uint64_t);

// How many bytes of a word, from the first on, are neither quote, backslash nor control character,
// and ASCII. A byte that is marked may mark later ones in vain, none before it.
inline size_t plain_bytes(const char* word) {
  constexpr uint64_t ONES = 0x0101010101010101u;
  uint64_t bytes = 0;
  std::memcpy(&bytes, word, WORD);
  if constexpr (std::endian::native == std::endian::big) bytes = __builtin_bswap64(bytes);
  const uint64_t control = bytes - ONES * ' ';
  const uint64_t quote = (bytes ^ ONES * '"') - ONES;
  const uint64_t backslash = (bytes ^ ONES * '\\') - ONES;
  const uint64_t marks = (control | quote | backslash | bytes) & ONES * 0x80;
  return marks == 0 ? WORD : static_cast<size_t>(std::countr_zero(marks)) / 8;
}

// The same for a text, up to its end at the latest; a word behind that can be read.
inline size_t plain_run(const char* text) {
  for (size_t run = 0;; run += WORD) {
    const size_t plain = plain_bytes(text + run);
    if (plain < WORD) return run + plain;
  }
}

// The same for a text of that size, behind which nothing can be read.
inline size_t plain_run(const char* text, size_t size) {
  size_t run = 0;
  for (; run + WORD <= size; run += WORD) {
    const size_t plain = plain_bytes(text + run);
    if (plain < WORD) return run + plain;
  }
  char rest[WORD] = "";  // a control character ends it
  std::memcpy(rest, text + run, size - run);
  return run + plain_bytes(rest);
}

}  // namespace dm

#endif
