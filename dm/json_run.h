// How far a JSON string runs without a character that needs escaping, eight bytes at a time.
#ifndef DM_JSON_RUN_H
#define DM_JSON_RUN_H

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace dm {

inline constexpr size_t WORD = sizeof(uint64_t);

// How many bytes at the start of eight are plain: ASCII, but neither control character, quote nor
// backslash. Bit 7 of each byte of `marks` is set where the byte is not plain. A borrow of the
// subtractions can set it wrongly too, but only behind a byte that is not plain.
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

// The same for a text that a NUL byte ends. Eight bytes beyond it must be readable.
inline size_t plain_run(const char* text) {
  for (size_t run = 0;; run += WORD) {
    const size_t plain = plain_bytes(text + run);
    if (plain < WORD) return run + plain;
  }
}

// The same for a text of that size. Reads no byte behind it.
inline size_t plain_run(const char* text, size_t size) {
  size_t run = 0;
  for (; run + WORD <= size; run += WORD) {
    const size_t plain = plain_bytes(text + run);
    if (plain < WORD) return run + plain;
  }
  char rest[WORD] = "";  // padded with NUL bytes, which are not plain
  std::memcpy(rest, text + run, size - run);
  return run + plain_bytes(rest);
}

}  // namespace dm

#endif
