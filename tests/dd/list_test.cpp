// A list with indexes gives what a walk from its start would give.
#include "dd/list.h"

#include <gtest/gtest.h>

#include "dd/values.h"

namespace {

// By number, so that equal names can be told apart; -1 for none.
int32_t number_of(tav_flist_t* element) {
  return element != nullptr ? dd_int(element, TAV_FLD_FIELD_NUM, nullptr) : -1;
}

dd_flist element_of(const std::string& name, int32_t number) {
  dd_flist element(tav_flist_create(nullptr));
  dd_set_text(element.get(), TAV_FLD_FIELD_NAME, name.c_str(), nullptr);
  dd_set_int(element.get(), TAV_FLD_FIELD_NUM, number, nullptr);
  return element;
}

class list : public testing::Test {
 protected:
  ~list() override { EXPECT_EQ(ebuf.err_code, TAV_ERR_NONE); }

  void append(const char* name, int32_t number) { fields.append(element_of(name, number), &ebuf); }
  void lend(const char* name, int32_t number) {
    fields.lend(theirs.emplace_back(element_of(name, number)).get(), &ebuf);
  }
  int32_t named(const char* name) { return number_of(fields.find(name, &ebuf)); }
  int32_t numbered(int32_t number) { return number_of(fields.find_number(number, &ebuf)); }

  tav_ebuf ebuf{};
  std::vector<dd_flist> theirs;
  dd_list fields{DD_FIELDS, dd_flist(tav_flist_create(nullptr))};
};

}  // namespace

TEST_F(list, gives_its_own_elements_before_those_lent_whenever_they_came) {
  lend("a", 1);
  append("A", 2);
  EXPECT_EQ(named("a"), 2);  // now there is an index, where the first that came stays the first
  lend("B", 3);
  append("b", 4);
  EXPECT_EQ(named("B"), 3);
  EXPECT_EQ(fields.count(&ebuf), 2);
  dd_list_walk walk(fields);
  std::string met;
  while (tav_flist_t* element = walk.next(&ebuf)) {
    met += (walk.is_lent() ? " lent " : " ") + std::to_string(number_of(element));
  }
  EXPECT_EQ(met, " 2 4 lent 1 lent 3");
  fields.forget_indexes();
  EXPECT_EQ(named("B"), 4);
  EXPECT_EQ(numbered(3), 3);
  EXPECT_EQ(numbered(5), -1);
  lend("c", 5);
  EXPECT_EQ(numbered(5), 5);
  append("", 6);
  EXPECT_EQ(named(""), 6);
}

TEST_F(list, that_was_given_has_nothing_of_the_one_before) {
  append("a", 1);
  lend("b", 2);
  EXPECT_EQ(named("a") + named("b") + numbered(1), 4);
  dd_flist other(tav_flist_create(&ebuf));
  dd_append(other.get(), TAV_FLD_FIELD, element_of("c", 3), &ebuf);
  fields.give(std::move(other));
  EXPECT_EQ(named("a") + named("b") + numbered(1), -3);
  EXPECT_EQ(named("c"), 3);
}

TEST_F(list, keeps_types_where_its_shape_has_them) {
  dd_list typed(DD_TYPED_FIELDS, fields.get());
  append("NONE", 1);
  append("INT", 2);
  dd_set_int(fields.find("INT", &ebuf), TAV_FLD_FIELD_TYPE, TAV_FLDT_INT, &ebuf);
  const auto type_in = [&](dd_list& in, const char* name) {
    return in.find_known(name, dd_hash(name), &ebuf)->type.value_or(-1);
  };
  EXPECT_EQ(type_in(typed, "none"), -1);
  EXPECT_EQ(type_in(typed, "int"), TAV_FLDT_INT);
  EXPECT_EQ(type_in(fields, "int"), -1);
  const dd_flist lent = element_of("LATER", 3);
  typed.lend({lent.get(), TAV_FLDT_NUM}, {"LATER", dd_hash("LATER"), 3}, &ebuf);
  EXPECT_EQ(type_in(typed, "later"), TAV_FLDT_NUM);
}

TEST_F(list, does_nothing_on_a_held_error) {
  append("a", 1);
  const dd_flist lent = element_of("b", 2);
  tav_ebuf held{0, 0, TAV_ERR_BUSY, 0, 0, 0, 0, nullptr};
  EXPECT_EQ(fields.find("a", &held), nullptr);
  EXPECT_EQ(fields.find_number(1, &held), nullptr);
  fields.lend(lent.get(), &held);
  fields.lend({lent.get()}, {"b", dd_hash("b"), 2}, &held);
  fields.append(element_of("c", 3), &held);
  EXPECT_EQ(held.err_code, TAV_ERR_BUSY);
  EXPECT_EQ(named("a"), 1);
  EXPECT_EQ(named("b") + named("c") + numbered(2), -3);
}

// Names and numbers repeat; own elements go and lent ones come, with indexes built at any time.
TEST_F(list, is_a_walk_from_the_start) {
  uint32_t chance = 1;
  const auto below = [&](int limit) {
    chance = chance * 1664525 + 1013904223;
    return static_cast<int>(chance >> 16) % limit;
  };
  const auto name = [&] { return std::string(1, "aAbBcCdD"[below(8)]); };
  for (int i = 0; i < 300; ++i) append(name().c_str(), below(6));
  for (int i = 0; i < 600; ++i) {
    if (i % 2 == 0) {
      lend(name().c_str(), below(6));
    } else {
      dd_walk gone(fields.get(), TAV_FLD_FIELD);
      tav_flist_t* element = gone.next(&ebuf);
      for (int skip = below(fields.count(&ebuf)); skip > 0; --skip) element = gone.next(&ebuf);
      fields.drop(gone.id(), element, &ebuf);
    }
    if (below(50) == 0) fields.forget_indexes();
    const std::string sought = name();
    const int number = below(6);
    tav_flist_t *by_name = nullptr, *by_number = nullptr;
    dd_list_walk walk(fields);
    while (tav_flist_t* element = walk.next(&ebuf)) {
      if (by_number == nullptr && number_of(element) == number) by_number = element;
      const char* own = dd_text(element, TAV_FLD_FIELD_NAME, &ebuf);
      if (by_name == nullptr && dd_equal(own, sought.c_str())) by_name = element;
    }
    ASSERT_EQ(fields.find(sought.c_str(), &ebuf), by_name) << i;
    ASSERT_EQ(fields.find_number(number, &ebuf), by_number) << i;
    if (fields.count(&ebuf) == 0) break;
  }
}
