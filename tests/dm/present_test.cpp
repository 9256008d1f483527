// The digests of what a dictionary holds, from one that counts how often all of it is read.
#include "dict/plan/present.h"

#include <gtest/gtest.h>

static int readings;

static bool give_fields(dm::store*, int64_t, const dm::choice&, dm::visitor<dm::field_row> visitor,
                        dm::problem&) {
  ++readings;
  visitor.call(visitor.context, {"F_A", 20001, TAV_FLDT_STRING, nullptr, 0, 0});
  return true;
}

static bool give_classes(dm::store*, int64_t, const dm::choice&, dm::visitor<dm::class_row>,
                         dm::problem&) {
  return true;
}

TEST(present, digests_of_many_things_are_read_once) {
  constexpr size_t MANY = 10'000;
  dm::store_calls calls{};
  calls.fields = give_fields;
  calls.classes = give_classes;
  dm::store store{&calls};
  dm::problem why;
  dict::present_digests present(store, 1, MANY);
  std::string field, gone;
  EXPECT_TRUE(present.find(dm::change_of::FIELD, "f_a", field, why));
  EXPECT_TRUE(present.find(dm::change_of::CLASS, "F_A", gone, why));
  EXPECT_EQ(gone, dict::ABSENT);
  EXPECT_NE(field, dict::ABSENT);
  EXPECT_EQ(readings, 1);
}
