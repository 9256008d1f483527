// The index gives what a walk from the start would give, and compares about as many keys as there
// are questions, however the keys were chosen.
#include "dd/index.h"

#include <gtest/gtest.h>

#include <string>

namespace {

int compared = 0;

template <class By>
struct counting : By {
  template <class Sought>
  static bool equal(const typename By::key& a, const Sought& b) {
    return ++compared, By::equal(a, b);
  }
};

// Names of 16 letters, each one of two.
std::vector<std::string> names_of(const char* two, int count) {
  std::vector<std::string> names;
  for (int i = 0; i < count; ++i) {
    std::string& name = names.emplace_back(16, two[0]);
    for (int bit = 0; bit < 16; ++bit) name[static_cast<size_t>(bit)] = two[i >> bit & 1];
  }
  return names;
}

constexpr int MANY = 10000;

}  // namespace

// Beside a comparison for each name that is found there is room for one of a thousand hashes to
// collide by chance; of those that differ in bit 5 only, each would collide with all before it.
TEST(index_by_name, compares_names_that_could_be_made_to_collide_once) {
  for (const char* two : {"^~", "@`", "[{", "aB", "\xc1\xe1"}) {
    const std::vector<std::string> names = names_of(two, MANY);
    dd_index<counting<dd_by_name>, int> index;
    compared = 0;
    for (int i = 0; i < MANY; ++i) index.add(names[static_cast<size_t>(i)].c_str(), i);
    EXPECT_LT(compared, MANY / 1000) << two;
    for (int i = 0; i < MANY; ++i) EXPECT_EQ(*index.find(names[static_cast<size_t>(i)].c_str()), i);
    EXPECT_LT(compared, MANY + MANY / 500) << two;
  }
}

// Names whose hashes collide are told apart, also from a part of a text.
TEST(index_by_name, compares_all_of_a_name) {
  EXPECT_TRUE(dd_by_name::equal("/a", std::string_view("/A/b", 2)));
  EXPECT_FALSE(dd_by_name::equal("/x", std::string_view("/a/b", 2)));
}

// A slot's neighbours are looked at without a comparison, so that the slots are judged by the
// hashes: in 16 times as many places, numbers that spread by chance fall into 97 of a hundred their
// own.
TEST(index_by_number, multiples_of_powers_of_two_spread) {
  for (const int32_t step : {1, 256, 65536, 1 << 20}) {
    std::vector<bool> taken(16 * 2048);
    int places = 0;
    for (int32_t i = 0; i < 2048; ++i) {
      const size_t place =
          dd_hash_number(static_cast<int32_t>(static_cast<uint32_t>(i * int64_t{step}))) %
          taken.size();
      if (!taken[place]) ++places;
      taken[place] = true;
    }
    EXPECT_GT(places, 2048 * 9 / 10) << step;
  }
}

TEST(index_by_name, with_equal_keys_gives_the_first_and_compares_each_once) {
  const std::string name = "SAME";
  const std::string other = "same";
  dd_index<counting<dd_by_name>, int> index;
  compared = 0;
  for (int i = 0; i < MANY; ++i) index.add((i % 2 != 0 ? name : other).c_str(), i);
  for (int i = 0; i < MANY; ++i) {
    ASSERT_EQ(*index.find("Same"), i);
    index.remove("sAME", i);
  }
  EXPECT_EQ(index.find("same"), nullptr);
  for (int i = 0; i < MANY; ++i) {
    index.add("same", i);
    index.remove("same", i);
  }
  EXPECT_LE(compared, 5 * MANY);
}

struct by_colliding_number : dd_by_number {
  static uint32_t hash(key) { return 1; }
};

// Against a walk over all pairs that are there.
template <class By>
static void expect_a_walk_from_the_start() {
  dd_index<By, int> index;
  std::vector<std::pair<int, int>> model;
  uint32_t chance = 1;
  for (int i = 0; i < 4000; ++i) {
    chance = chance * 1664525 + 1013904223;
    const int key = static_cast<int>(chance >> 16 & 63);
    if (chance >> 30 != 0 || model.empty()) {
      index.add(key, i);
      model.emplace_back(key, i);
    } else {
      const auto gone = model.begin() + static_cast<long>((chance >> 8) % model.size());
      index.remove(gone->first, gone->second);
      model.erase(gone);
    }
    const auto first = std::find_if(model.begin(), model.end(),
                                    [key](const auto& pair) { return pair.first == key; });
    const int* found = index.find(key);
    ASSERT_EQ(found != nullptr ? *found : -1, first != model.end() ? first->second : -1) << i;
  }
}

TEST(index_by_number, is_a_walk_from_the_start) {
  expect_a_walk_from_the_start<dd_by_number>();
  expect_a_walk_from_the_start<by_colliding_number>();
}
