// What an access level leaves in its output, which held something else before.
#include <gtest/gtest.h>

#include "dparse/read/reader.h"
#include "language.h"

TEST(AccessLevel, LeavesNothingOfAnEarlierOne) {
  const struct {
    const char *text, *left;
  } rows[] = {
      {"Self;", ""}, {"= \"self\";", ""}, {"= ROOT;", ""},
      {"= ;", ""},   {"= Self}", "Self"}, {"= \"Root\";", "Any"},
  };
  for (const auto& row : rows) {
    char value[32] = "Global";
    EXPECT_EQ(dparseReadWriteAccessLevel(stream_of(row.text).get(), value, sizeof value), -1);
    EXPECT_STREQ(value, row.left) << row.text;
    dparse_errmsg[0] = '\0';
  }
  take_log();
}
