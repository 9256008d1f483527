#include "dd/last_resort.h"

#include <gtest/gtest.h>

#include <new>
#include <stdexcept>

template <class Thrown>
static void end_by(const Thrown& thrown) {
  throw thrown;
}

// Ends by an exception that nobody catches.
template <class Thrown>
static void end(const Thrown& thrown) noexcept {
  dd_end_without_memory("No memory.\n", 7);
  end_by(thrown);
}

TEST(last_resort, is_for_memory_that_ran_out_and_for_nothing_else) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(end(std::bad_alloc()), testing::ExitedWithCode(7), "^No memory\\.\n$");
  EXPECT_EXIT(end(std::logic_error("other")), testing::KilledBySignal(SIGABRT), "other");
}
