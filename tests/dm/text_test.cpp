// Which texts a dictionary takes.
#include "dm/rules/text.h"

#include <gtest/gtest.h>

#include <string>

// Texts are looked at in steps of eight bytes.
TEST(text, is_refused_with_a_bad_byte_anywhere) {
  for (size_t size = 1; size <= 17; ++size) {
    EXPECT_EQ(dm::text_fault(std::string(size, 'a').c_str()), nullptr);
    for (size_t place = 0; place < size; ++place) {
      std::string text(size, 'a');
      text[place] = '\xff';
      EXPECT_STREQ(dm::text_fault(text.c_str()), "is not UTF-8") << size << ", " << place;
    }
  }
}
