// Decimals, object ids, names and bounded texts.
#include <gtest/gtest.h>

#include <climits>
#include <cstring>

#include "dd/owners.h"

TEST(Decimal, KeepsItsWrittenDigits) {
  for (const char* text :
       {"0", "1.50", "-007", "+3.", ".5", "-.25", "123456789012345678901234567890.1"}) {
    tav_ebuf ebuf{};
    dd_decimal decimal(tav_decimal(text, &ebuf));
    char buffer[64];
    tav_decimal_to_str(decimal.get(), 0, buffer, sizeof buffer, &ebuf);
    EXPECT_EQ(ebuf.err_code, TAV_ERR_NONE) << text;
    EXPECT_STREQ(buffer, text);
  }
}

TEST(Decimal, RefusesWhatIsNoneAndBuffersTooSmall) {
  for (const char* text : {"", ".", "-", "1e5", "0x1", " 1", "1 ", "1.2.3", "--1", "1,5", "nan"}) {
    tav_ebuf ebuf{};
    EXPECT_EQ(tav_decimal(text, &ebuf), nullptr) << text;
    EXPECT_EQ(ebuf.err_code, TAV_ERR_BAD_VALUE) << text;
  }
  tav_ebuf ebuf{};
  dd_decimal zero(tav_decimal_alloc_result_zero(&ebuf));
  char buffer[] = "xx";
  tav_decimal_to_str(zero.get(), 0, buffer, 2, &ebuf);
  EXPECT_STREQ(buffer, "0");
  tav_decimal_to_str(zero.get(), 0, buffer, 1, &ebuf);
  EXPECT_EQ(ebuf.err_code, TAV_ERR_BAD_ARG);
  EXPECT_STREQ(buffer, "0");
}

TEST(Poid, CopiesItsPartsAndNothing) {
  tav_ebuf ebuf{};
  dd_poid poid(tav_poid_create(UINT64_MAX, nullptr, INT64_MIN, &ebuf));
  dd_poid copy(tav_poid_copy(poid.get(), &ebuf));
  poid.reset();
  EXPECT_EQ(tav_poid_get_db(copy.get()), UINT64_MAX);
  EXPECT_STREQ(tav_poid_get_type(copy.get()), "");
  EXPECT_EQ(tav_poid_get_id(copy.get()), INT64_MIN);
  EXPECT_EQ(tav_poid_copy(nullptr, &ebuf), nullptr);
  EXPECT_EQ(ebuf.err_code, TAV_ERR_NONE);
  EXPECT_STREQ(tav_poid_get_type(nullptr), "");
}

TEST(Names, AreNeverMissing) {
  EXPECT_STREQ(tav_name_of_field(0x5000011), "TAV_FLD_NAME");
  EXPECT_STREQ(tav_name_of_field(0x100000c), "INT 12");
  EXPECT_STREQ(tav_name_of_field(0), "UNUSED 0");
  EXPECT_STREQ(tav_name_of_field(0x2000001), "TYPE-2 1");
  EXPECT_STREQ(tav_taverr_to_str(65), "TAV_ERR_WRITE_REFUSED");
  EXPECT_STREQ(tav_errloc_to_str(4), "TAV_ERRLOC_DM");
  EXPECT_NE(tav_errclass_to_str(INT_MIN), nullptr);
}

TEST(BoundedTexts, CutAndTellTheWholeLength) {
  const struct {
    const char* before;
    const char* text;
    size_t size;
    const char* copied;
    const char* appended;
    size_t whole;  // of the appended text
  } cases[] = {
      {"ab", "cd", 8, "cd", "abcd", 4}, {"ab", "cd", 4, "cd", "abc", 4},
      {"ab", "cd", 3, "cd", "ab", 4},   {"ab", "", 3, "", "ab", 2},
      {"", "cd", 1, "", "", 2},         {"abc", "cd", 2, "c", "abc", 4},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(std::string(c.before) + "+" + c.text + ":" + std::to_string(c.size));
    char buffer[16] = "";
    EXPECT_EQ(tav_strlcpy(buffer, c.text, c.size), std::strlen(c.text));
    EXPECT_STREQ(buffer, c.copied);
    EXPECT_EQ(tav_snprintf(buffer, c.size, "%s", c.text), std::strlen(c.text));
    EXPECT_STREQ(buffer, c.copied);
    std::strcpy(buffer, c.before);
    EXPECT_EQ(tav_strlcat(buffer, c.text, c.size), c.whole);
    EXPECT_STREQ(buffer, c.appended);
  }
  EXPECT_EQ(tav_snprintf(nullptr, 0, "%d", 12345), 5u);
  char unwritten[] = "old";
  EXPECT_EQ(tav_snprintf(unwritten, sizeof unwritten, "a%ls", L"\xd800"), 0u);  // no character
  EXPECT_STREQ(unwritten, "");
}
