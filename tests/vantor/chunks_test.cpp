// Memory for bodies: blocks stand one behind the other, and any thread may free them.
#include "vantor/list/chunks.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

using namespace vantor;

namespace {

char* made(size_t size, std::vector<block>& blocks) {
  blocks.push_back(new_block(size));
  return static_cast<char*>(blocks.back().memory);
}

void free_all(std::vector<block>& blocks) {
  for (const block& b : blocks) free_block(b.memory, b.distance, 8);
  blocks.clear();
}

TEST(Chunks, ARunThatIsFreedIsMadeAgainInItsPlace) {
  std::vector<block> before;
  std::vector<block> run;
  char* kept = made(64, before);
  start_run();
  char* first = made(64, run);
  EXPECT_EQ(first, kept + 64);
  EXPECT_EQ(size_of_last(first), 64u);
  shorten_last(24);
  EXPECT_EQ(size_of_last(first), 0u);
  EXPECT_EQ(made(64, run), first + 24);
  made(64, run);
  free_all(run);
  EXPECT_EQ(made(64, run), first);
  free_all(run);
  free_all(before);
}

TEST(Chunks, AnotherThreadFreesWhileOneGoesOn) {
  constexpr size_t MANY = 4096;
  std::vector<block> lent;
  std::vector<block> own;
  for (size_t i = 0; i < MANY; ++i) {
    *made(40, lent) = 1;
    *made(40, own) = 2;
  }
  std::thread other([&] { free_all(lent); });
  for (size_t i = 0; i < MANY; ++i) *made(40, own) = 2;
  other.join();
  for (const block& b : own) EXPECT_EQ(*static_cast<char*>(b.memory), 2);
  free_all(own);
}

// What it made lives on; the chunk goes with the last block, which the leak sanitizer sees.
TEST(Chunks, AThreadThatEndsLeavesItsChunk) {
  std::vector<block> lent;
  std::thread([&] { *made(40, lent) = 1; }).join();
  EXPECT_EQ(*static_cast<char*>(lent.front().memory), 1);
  free_all(lent);
}

}  // namespace
