#include "dm/text_rules.h"

#include <cstdint>
#include <cstring>

#include "dm/keywords.h"

namespace dm {

// How many bytes follow the first byte of a UTF-8 sequence, and the range of the second byte (which
// keeps out over-long forms, surrogates and what lies beyond the last code point); 0 for no such
// byte.
struct sequence {
  int following;
  unsigned char low, high;
};

static sequence sequence_of(unsigned char first) {
  if (first >= 0xc2 && first <= 0xdf) return {1, 0x80, 0xbf};
  if (first == 0xe0) return {2, 0xa0, 0xbf};
  if (first == 0xed) return {2, 0x80, 0x9f};
  if (first >= 0xe1 && first <= 0xef) return {2, 0x80, 0xbf};
  if (first == 0xf0) return {3, 0x90, 0xbf};
  if (first >= 0xf1 && first <= 0xf3) return {3, 0x80, 0xbf};
  if (first == 0xf4) return {3, 0x80, 0x8f};
  return {0, 0, 0};
}

// The bytes of the sequence at `at`, 0 when it is none.
static size_t sequence_length(const unsigned char* at) {
  const sequence expected = sequence_of(*at);
  if (expected.following == 0 || at[1] < expected.low || at[1] > expected.high) return 0;
  for (int i = 2; i <= expected.following; ++i) {
    if ((at[i] & 0xc0) != 0x80) return 0;
  }
  return static_cast<size_t>(expected.following) + 1;
}

// Whether it is plain ASCII, and so short that escapes cannot make it too long: nearly every text.
static bool is_plain(const char* text) {
  constexpr uint64_t HIGH_BITS = 0x8080808080808080u;
  constexpr size_t WORD = sizeof(uint64_t);
  const size_t length = std::strlen(text);
  if (length > LONGEST_TEXT / 2) return false;
  uint64_t bits = 0;
  const auto take = [&](size_t at) {
    uint64_t bytes;
    std::memcpy(&bytes, text + at, WORD);
    bits |= bytes;
  };
  for (size_t at = 0; at + WORD < length; at += WORD) take(at);
  if (length >= WORD) take(length - WORD);
  for (size_t at = 0; length < WORD && at < length; ++at) {
    bits |= static_cast<unsigned char>(text[at]);
  }
  return (bits & HIGH_BITS) == 0;
}

const char* text_fault(const char* text) {
  if (is_plain(text)) return nullptr;
  const auto* at = reinterpret_cast<const unsigned char*>(text);
  size_t length = 0;
  while (*at != '\0') {
    const size_t bytes = *at < 0x80 ? 1 : sequence_length(at);
    if (bytes == 0) return "is not UTF-8";
    length += *at == '\t' || *at == '\n' ? 2 : bytes;
    at += bytes;
  }
  return length > LONGEST_TEXT ? "is longer than 2047 bytes" : nullptr;
}

static constexpr char WHITE_SPACE[] = " \t\n\v\f\r";
static constexpr char NO_PART_OF_A_WORD[] = " \t\n\v\f\r={};";

const char* field_name_fault(const char* name) {
  if (*name == '\0') return "is empty";
  if (*name == '"' || *name == '#') return "begins with a quote or a number sign";
  if (const char* at = std::strpbrk(name, NO_PART_OF_A_WORD)) {
    return std::strpbrk(at, WHITE_SPACE) != nullptr ? "holds white space" : "holds one of = ; { }";
  }
  if (is_keyword(name)) return "is a keyword of the definition language";
  return text_fault(name);
}

const char* class_name_fault(const char* name) {
  if (*name != '/') return "does not begin with '/'";
  if (std::strstr(name, "//") != nullptr || name[std::strlen(name) - 1] == '/') {
    return "has an empty step";
  }
  return field_name_fault(name);
}

}  // namespace dm
