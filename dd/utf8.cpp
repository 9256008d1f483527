#include "dd/utf8.h"

// For the first byte of a UTF-8 sequence: how many bytes follow (-1: it begins no sequence), and
// the range of the second byte. That range excludes over-long forms, surrogates and code points
// above U+10FFFF.
struct sequence {
  int following;
  unsigned char low, high;
};

static sequence sequence_of(unsigned char first) {
  if (first < 0x80) return {0, 0, 0};
  if (first >= 0xc2 && first <= 0xdf) return {1, 0x80, 0xbf};
  if (first == 0xe0) return {2, 0xa0, 0xbf};
  if (first == 0xed) return {2, 0x80, 0x9f};
  if (first >= 0xe1 && first <= 0xef) return {2, 0x80, 0xbf};
  if (first == 0xf0) return {3, 0x90, 0xbf};
  if (first >= 0xf1 && first <= 0xf3) return {3, 0x80, 0xbf};
  if (first == 0xf4) return {3, 0x80, 0x8f};
  return {-1, 0, 0};
}

size_t dd_utf8_length(const char* text, size_t left) {
  const auto* at = reinterpret_cast<const unsigned char*>(text);
  if (left == 0) return 0;
  const sequence expected = sequence_of(*at);
  const auto length = static_cast<size_t>(expected.following + 1);
  if (length <= 1) return length;
  if (length > left || at[1] < expected.low || at[1] > expected.high) return 0;
  for (size_t i = 2; i < length; ++i) {
    if ((at[i] & 0xc0) != 0x80) return 0;
  }
  return length;
}

std::string_view dd_utf8_cut(std::string_view text, size_t most) {
  if (text.size() <= most) return text;
  size_t end = most;
  while (end > 0 && most - end < 3 && (text[end] & '\xC0') == '\x80') --end;
  return text.substr(0, end);
}
