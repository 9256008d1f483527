#include "dd/database_number.h"

#include <gtest/gtest.h>

TEST(database_number, is_read_whole_and_written_the_same) {
  static const struct {
    const char* text;
    uint64_t number;
  } NUMBERS[] = {{"0.0.0.1", 1},
                 {"0.0.1.1", 0x10001},
                 {"1.2.3.4", 0x0001000200030004},
                 {"65535.65535.65535.65535", 0xffffffffffffffff}};
  for (const auto& row : NUMBERS) {
    uint64_t number = 0;
    EXPECT_TRUE(dd_read_database(row.text, number)) << row.text;
    EXPECT_EQ(number, row.number) << row.text;
    EXPECT_EQ(dd_database_text(row.number), row.text);
  }
  for (const char* text : {"", "1", "1.2.3", "1.2.3.", "1..3.4", ".1.2.3", "1.2.3.4.", "1.2.3.4.5",
                           "1.2.3.4x", " 1.2.3.4", "+1.2.3.4", "-1.2.3.4", "1.2.3.65536"}) {
    uint64_t number = 7;
    EXPECT_FALSE(dd_read_database(text, number)) << text;
    EXPECT_EQ(number, 7u) << text;
  }
  uint64_t number = 0;
  EXPECT_TRUE(dd_read_database(std::string_view("0.0.0.12").substr(0, 7), number));
  EXPECT_EQ(number, 1u) << "ends where the text does";
}
