#include "dd/utf8.h"

#include <gtest/gtest.h>

#include <string>

// The character's code point, read by the bits of its bytes alone; -1 where they are none.
static int32_t code_point(const std::string& bytes) {
  const auto byte = [&](size_t i) { return static_cast<unsigned char>(bytes[i]); };
  static const unsigned char LEAD[] = {0x00, 0xc0, 0xe0, 0xf0}, MASK[] = {0x80, 0xe0, 0xf0, 0xf8};
  const size_t more = bytes.size() - 1;
  if ((byte(0) & MASK[more]) != LEAD[more]) return -1;
  int32_t point = byte(0) & ~MASK[more];
  for (size_t i = 1; i <= more; ++i) {
    if ((byte(i) & 0xc0) != 0x80) return -1;
    point = point << 6 | (byte(i) & 0x3f);
  }
  return point;
}

static bool is_character(const std::string& bytes) {
  static const int32_t FIRST[] = {0, 0x80, 0x800, 0x10000};  // that needs so many bytes
  const int32_t point = code_point(bytes);
  const bool is_surrogate = point >= 0xd800 && point <= 0xdfff;
  return point >= FIRST[bytes.size() - 1] && point <= 0x10ffff && !is_surrogate;
}

TEST(utf8, is_what_unicode_takes_and_nothing_else) {
  static const char ENDS[] = {'\x7f', '\x80', '\xbf', '\xc0'};
  for (int i = 0x7e00; i < 0x10000; ++i) {
    std::string text{static_cast<char>(i >> 8), static_cast<char>(i)};
    for (const char third : ENDS) {
      for (const char fourth : ENDS) {
        const std::string bytes = text + third + fourth;
        size_t length = 0;
        for (size_t n = 1; n <= bytes.size(); ++n) {
          if (is_character(bytes.substr(0, n))) length = n;
        }
        ASSERT_EQ(dd_utf8_length(bytes.data()), length) << testing::PrintToString(bytes);
        ASSERT_EQ(dd_utf8_length(bytes.data(), length - (length > 0)), 0u) << i;
      }
    }
  }
}

TEST(utf8, is_cut_before_a_character) {
  const struct {
    const char* text;
    size_t most, left;
  } cases[] = {
      {"abc", 3, 3},     {"abcd", 3, 3},    {"a\u20ac", 4, 4},    {"a\u20acb", 4, 4},
      {"a\u20ac", 3, 1}, {"a\u20ac", 2, 1}, {"\U0001d11e", 3, 0}, {"ab\x80\x80\x80\x80\x80", 6, 3}};
  for (const auto& each : cases) EXPECT_EQ(dd_utf8_cut(each.text, each.most).size(), each.left);
}
