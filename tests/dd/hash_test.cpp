#include "dd/hash.h"

#include <gtest/gtest.h>

#include <string>

// Lengths on both sides of each way in which bytes are read.
TEST(hash, is_of_letters_folded_and_of_nothing_else) {
  for (size_t length = 1; length < 40; ++length) {
    for (size_t place = 0; place < length; ++place) {
      std::string text(length, 'x');
      const uint32_t plain = dd_hash(text.c_str());
      text[place] = 'X';
      EXPECT_EQ(dd_hash(text.c_str()), plain) << text;
      for (const char other : {'w', '8', '\x18', '\xf8', '\xd8'}) {
        text[place] = other;
        EXPECT_NE(dd_hash(text.c_str()), plain) << text;
      }
    }
  }
  for (const char* pair : {"@`", "AZ", "[{", "Z[", "^~", "@A"}) {
    EXPECT_NE(dd_hash(pair, 1), dd_hash(pair + 1, 1)) << pair;
  }
  for (const char* pair : {"Aa", "Zz", "mM"}) {
    EXPECT_EQ(dd_hash(pair, 1), dd_hash(pair + 1, 1)) << pair;
  }
}

TEST(hash, of_beginnings_is_that_of_each_by_itself) {
  const std::string text = "/a/bcdefg/H/ijklmnopqrstuvwxyz0123456789/x/y/z";
  dd_hash_of_beginnings hashes(text.c_str());
  for (size_t length = 0; length <= text.size(); ++length) {
    EXPECT_EQ(hashes.next(length), dd_hash(text.substr(0, length).c_str())) << length;
  }
}
