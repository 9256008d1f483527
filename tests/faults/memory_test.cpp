// Allocations fail, one or all from there on: the run says so, ends with status 1, leaks nothing,
// and leaves the dictionary as its last commit left it. Later ones are tried with gaps.
#include <algorithm>

#include "tests/faults/bench.h"

using every_allocation = fault_bench;

TEST_P(every_allocation, fails_and_nothing_is_lost) {
  long n = 1;
  for (long made = n; n <= made; n += 1 + n / 25) {
    fault_plan faults;
    faults.failing_allocation = n;
    faults.is_memory_gone = n % 2 == 0;
    const run_result result = run(faults);
    made = plan().allocations;
    SCOPED_TRACE("allocation " + std::to_string(n) + " of " + std::to_string(made));
    EXPECT_EQ(left, states[std::min(commits_told(result), states.size() - 1)]);
    // What does not matter to the outcome may fail unseen, as a record in the log does.
    if (result.exit_status == healthy.exit_status && result.out == healthy.out) continue;
    EXPECT_EQ(result.exit_status, 1) << result.err;
    EXPECT_NE(result.err, "");
    EXPECT_EQ(result.err.find("class=<TAV_ERRCLASS_NONE"), result.err.npos) << result.err;
    if (GetParam().is_export) {
      EXPECT_EQ(healthy.out.rfind(result.out, 0), 0u) << result.out;
    }
  }
  EXPECT_GT(n, 40);
}

INSTANTIATE_TEST_SUITE_P(modes, every_allocation,
                         testing::Values(VERIFY, CREATE, REPLACE, FIELD, CLASS), mode_of);
