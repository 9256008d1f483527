// Lists by example; what random operations do is in list_model_test.cpp.
#include <gtest/gtest.h>

#include <utility>
#include <vector>

#include "dd/values.h"

namespace {

constexpr uint32_t COUNT = TAV_FLD_FLAGS;
constexpr uint32_t ITEMS = TAV_FLD_OBJ_ELEM;
constexpr uint32_t PART = DD_FIELD_ID(TAV_FLDT_SUBSTRUCT, 900);

class List : public testing::Test {
 protected:
  tav_ebuf ebuf{};
  dd_flist list{tav_flist_create(&ebuf)};

  void TearDown() override { EXPECT_EQ(ebuf.err_code, TAV_ERR_NONE); }

  tav_flist_t* add(int32_t id) { return tav_flist_elem_add(list.get(), ITEMS, id, &ebuf); }
  void drop(int32_t id) { tavi_flist_drop(list.get(), ITEMS, id, &ebuf); }
  tav_flist_t* element(tav_flist_t* parent, int32_t id) {
    return static_cast<tav_flist_t*>(tavi_flist_get(parent, ITEMS, id, 1, 0, &ebuf));
  }
};

TEST_F(List, WalksMeetWhatIsAddedAndResume) {
  for (int32_t id = 0; id < 4; ++id) add(id);
  tav_cookie_t* cookie = nullptr;
  std::vector<int32_t> met;
  int32_t id = 0;
  const auto walk = [&] {
    while (tav_flist_elem_get_next(list.get(), ITEMS, &id, 0, &cookie, 0, &ebuf) != nullptr) {
      met.push_back(id);
      if (id == 1) drop(1), drop(2), add(9);
    }
    EXPECT_EQ(std::exchange(ebuf, {}).err_code, TAV_ERR_NOT_FOUND);
  };
  walk();
  EXPECT_EQ(met, (std::vector<int32_t>{0, 1, 3, 9}));
  add(2);
  walk();
  EXPECT_EQ(met.back(), 2);
  for (int32_t gone : {0, 3, 9, 2}) drop(gone);
  add(5);
  walk();
  EXPECT_EQ(met.back(), 5);
}

TEST_F(List, ManyElementsAreEachFoundById) {
  for (int32_t i = 0; i < 200; ++i) {
    tav_flist_t* added = add(i * -7);
    EXPECT_EQ(element(list.get(), i * -7), added) << i;
  }
}

TEST_F(List, ASubstructIsOneList) {
  dd_flist top(tav_flist_create(&ebuf));
  tav_flist_t* item = add(4);
  tav_flist_t* part = list.get();
  dd_put(top.get(), PART, 7, std::move(list), &ebuf);
  EXPECT_EQ(tavi_flist_get(top.get(), PART, 0, 0, 0, &ebuf), part);
  EXPECT_EQ(element(part, 4), item);
  tavi_flist_drop(top.get(), PART, 1, &ebuf);
  EXPECT_EQ(tavi_flist_get(top.get(), PART, 0, 1, 0, &ebuf), nullptr);
}

TEST_F(List, NestsWithoutLimit) {
  tav_flist_t* at = list.get();
  for (int level = 0; level < 10000; ++level) at = tav_flist_elem_add(at, ITEMS, 0, &ebuf);
  dd_flist other(tav_flist_copy(list.get(), &ebuf));
  dd_set_int(at, COUNT, 1, &ebuf);
  list.reset();
  tav_flist_t* theirs = other.get();
  for (int level = 0; level < 10000; ++level) theirs = element(theirs, 0);
  EXPECT_EQ(dd_int(theirs, COUNT, &ebuf, -1), -1);
}

TEST_F(List, HandlesFromBeforeACopyChangeTheirOwnList) {
  tav_flist_t* item = add(1);
  tav_flist_t* below = tav_flist_elem_add(item, ITEMS, 2, &ebuf);
  for (tav_flist_t* at : {item, below}) {
    dd_flist copy(tav_flist_copy(list.get(), &ebuf));
    dd_set_int(list.get(), COUNT, 1, &ebuf);  // its own body again; what is below stays shared
    dd_set_int(at, COUNT, 2, &ebuf);
    EXPECT_EQ(dd_int(at, COUNT, &ebuf), 2);
    tav_flist_t* theirs = element(copy.get(), 1);
    if (at == below) theirs = element(theirs, 2);
    EXPECT_EQ(dd_int(theirs, COUNT, &ebuf, -1), -1);
  }
}

TEST_F(List, CopiesValuesOfEveryType) {
  unsigned char bytes[] = {0, 255};
  tav_buf_t buf{2, bytes};
  const int64_t big = INT64_MIN;
  const double half = 0.5;
  const auto type = [](int32_t code) { return DD_FIELD_ID(code, 900); };
  tavi_flist_set(list.get(), type(TAV_FLDT_BUF), 0, 0, &buf, &ebuf);
  tavi_flist_set(list.get(), type(TAV_FLDT_INT64), 0, 0, &big, &ebuf);
  tavi_flist_set(list.get(), type(TAV_FLDT_NUM), 0, 0, &half, &ebuf);
  dd_put(list.get(), TAV_FLD_POID, 0, dd_poid(tav_poid_create(1, "/t", -5, &ebuf)), &ebuf);
  tavi_flist_put(list.get(), TAV_FLD_POID, 0, 0, nullptr, &ebuf);  // no id: nothing happens
  bytes[1] = 1;
  const auto get = [&](uint32_t field) {
    return tavi_flist_get(list.get(), field, 0, 0, 0, &ebuf);
  };
  EXPECT_EQ(static_cast<tav_buf_t*>(get(type(TAV_FLDT_BUF)))->data[1], 255);
  EXPECT_EQ(*static_cast<int64_t*>(get(type(TAV_FLDT_INT64))), INT64_MIN);
  EXPECT_EQ(*static_cast<double*>(get(type(TAV_FLDT_NUM))), 0.5);
  const auto* poid = static_cast<tav_poid_t*>(get(TAV_FLD_POID));
  EXPECT_STREQ(tav_poid_get_type(poid), "/t");
  EXPECT_EQ(tav_poid_get_id(poid), -5);
  dd_set_text(list.get(), TAV_FLD_NAME, "/self", &ebuf);
  dd_set_text(list.get(), TAV_FLD_NAME, dd_text(list.get(), TAV_FLD_NAME, &ebuf), &ebuf);
  EXPECT_STREQ(dd_text(list.get(), TAV_FLD_NAME, &ebuf), "/self");
}

}  // namespace
