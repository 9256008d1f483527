// Every call that the engine makes of the disk fails once, in each way; every write is the last
// before the process is killed, or before the power fails. So does every call of the engine.
#include "tests/faults/bench.h"

class every_disk_call : public fault_bench {
 protected:
  // Nothing but what the run told is durable. A killed run may not have come to tell of its last
  // commit; nor can one whose disk fails for good, from the commit's synchronising on, know what
  // the disk kept.
  void expect_durable_as_told(const run_result& result, disk_fault fault) {
    const size_t told = std::min(commits_told(result), states.size() - 1);
    const bool is_unknown =
        result.exit_status > 1 || (fault == disk_fault::BROKEN && plan().failed_a_sync);
    const bool is_next = is_unknown && told + 1 < states.size() && left == states[told + 1];
    if (!is_next) {
      EXPECT_EQ(left, states[told]) << result.out << result.err;
    }
  }

  void expect_explained(const run_result& result) {
    EXPECT_EQ(result.exit_status, 1);
    EXPECT_NE(result.err.find("tavlog file for more information"), std::string::npos);
    const std::string sentences = place.read("dm.tavlog") + place.read("cm.tavlog");
    EXPECT_NE(sentences.find("ictionary '"), std::string::npos) << sentences;
  }

  void look(const run_result& result, disk_fault fault) {
    const bool dies = fault == disk_fault::KILL || fault == disk_fault::POWER_LOSS;
    expect_durable_as_told(result, fault);
    const bool same = result.out == healthy.out && result.err == healthy.err;
    if (dies) {
      EXPECT_TRUE(result.exit_status == 128 + 9 || same);
    } else if (!same) {
      expect_explained(result);
    } else {
      EXPECT_EQ(result.exit_status, healthy.exit_status);
    }
  }
};

TEST_P(every_disk_call, fails_and_nothing_is_lost) {
  const int runs =
      at_every_disk_call([&](const run_result& result, disk_fault fault) { look(result, fault); });
  EXPECT_GT(runs, 50);
  RecordProperty("runs", runs);
}

INSTANTIATE_TEST_SUITE_P(mode, every_disk_call, testing::Values(VERIFY, CREATE, REPLACE), mode_of);

class every_way_of_a_mode : public every_disk_call {};

TEST_P(every_way_of_a_mode, to_the_engine_fails_and_is_told) {
  on_every_way_to_engine([&](const run_result& result) { look(result, disk_fault::NONE); });
}

INSTANTIATE_TEST_SUITE_P(mode, every_way_of_a_mode,
                         testing::Values(VERIFY, CREATE, REPLACE, FIELD, FIELD_NAMES, CLASS),
                         mode_of);
