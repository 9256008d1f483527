// A prune of the journal in which every call of the disk fails, is the last before the process is
// killed, or before the power fails: the journal is as it was, or pruned with the record of that.
#include <unistd.h>

#include "dm/journal/write.h"
#include "dm/open.h"
#include "tests/faults/bench.h"

// What 'tav_dict prune' does once it knows what to forget: all but the last record.
static int prune(int, char**) {
  put_disk_under_plan();
  dm::settings settings;
  dm::problem why;
  if (!dm::read_settings(settings, why)) _exit(3);
  dm::store_owner store = dm::open_dictionary(settings, {}, why);
  dm::journal_draft draft;
  dm::journal_run run;
  dm::journal_head end;
  bool is_done = store != nullptr && store->calls->begin(store.get(), true, why) &&
                 store->calls->journal_end(store.get(), end, why);
  const std::string detail =
      "{\"before\":" + std::to_string(end.number + 1) + ",\"hash\":\"" + end.hash + "\"}";
  is_done = is_done &&
            dm::add_event(*store, draft, run, {dm::journal_kind::PRUNE, 0, detail}, why) &&
            store->calls->forget_records(store.get(), end.number + 1, why) &&
            store->calls->commit(store.get(), why);
  store.reset();
  _exit(is_done ? 0 : 1);
}

class every_disk_call_of_a_prune : public fault_bench {};

TEST_P(every_disk_call_of_a_prune, forgets_all_or_nothing) {
  static constexpr char STATE[] =
      "PRAGMA integrity_check; SELECT count(*) || '-' || max(kind = 'prune') FROM dd_journal;"
      "SELECT count(*) FROM sqlite_schema WHERE type = 'trigger'";
  static constexpr char NEW_STATE[] = "ok 1-1 9 ";  // all guards are there
  place.restore();
  const std::string old_state = answer(STATE);
  const auto run_one = [&](const fault_plan& faults) { return run_inside(prune, faults); };
  const auto look = [&](const run_result& result, disk_fault) {
    const std::string state = answer(STATE);
    EXPECT_TRUE(state == NEW_STATE || (state == old_state && result.exit_status != 0)) << state;
    EXPECT_EQ(place.run({"dict", "check"}).out, "No findings.\n");
  };
  EXPECT_GT(at_every_disk_call(run_one, look), 30);
  EXPECT_EQ(answer(STATE), NEW_STATE);
}

INSTANTIATE_TEST_SUITE_P(mode, every_disk_call_of_a_prune, testing::Values(REPLACE), mode_of);
