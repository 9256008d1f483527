#include "dict/parsed_json.h"

#include <gtest/gtest.h>

#include <string>

static std::string nested(size_t depth, const std::string& inside = "") {
  return std::string(depth, '[') + inside + std::string(depth, ']');
}

TEST(parsed_json, is_what_is_no_deeper_than_this_program_writes) {
  std::string siblings = "[{}";
  for (int i = 0; i < 100; ++i) siblings += ",[],{}";
  const std::string open(100, '['), quoted_open = "\"" + open + "\"";
  const struct {
    std::string text;
    bool is_read;
  } rows[] = {
      {nested(64), true},
      {nested(65), false},
      {nested(63, "{}"), true},
      {nested(64, "{}"), false},
      {siblings + "]", true},
      {nested(1, quoted_open), true},
      {nested(1, quoted_open + ",\"\\\"" + open + "\"," + quoted_open), true},
      {nested(1, "\"\\\\\"," + nested(63)), true},
      {nested(1, "\"\\\\\"," + nested(64)), false},
      {"", false},
      {"[", false},
      {"[]]", false},
  };
  for (const auto& row : rows)
    EXPECT_EQ(dict::parse_json(row.text).IsArray(), row.is_read) << row.text;
  EXPECT_TRUE(dict::parse_json("[").IsNull());
}
