// An upgrade of an older dictionary in which every call of the disk fails, is the last before the
// process is killed, or before the power fails: it leaves the old version or the new one.
#include <unistd.h>

#include "dm/journal/begin.h"
#include "dm/open.h"
#include "tests/faults/bench.h"

// What 'tav_dict upgrade' does after its backup.
static int upgrade(int, char**) {
  put_disk_under_plan();
  dm::settings settings;
  dm::problem why;
  dm::open_options options;
  options.may_upgrade = true;
  if (!dm::read_settings(settings, why)) _exit(3);
  dm::store_owner store = dm::open_dictionary(settings, options, why);
  const bool is_done = store != nullptr && store->calls->begin(store.get(), true, why) &&
                       dm::upgrade_dictionary(*store, why) &&
                       store->calls->commit(store.get(), why);
  store.reset();
  _exit(is_done ? 0 : 1);
}

class every_disk_call_of_an_upgrade : public fault_bench {};

TEST_P(every_disk_call_of_an_upgrade, leaves_one_version_or_the_other) {
  static constexpr char STATE[] =
      "PRAGMA integrity_check; PRAGMA user_version;"
      "SELECT count(*) FROM sqlite_schema WHERE name LIKE 'dd_journal%' OR name LIKE 'dd_id%'";
  const std::string old_state = "ok 1 0 ";
  const std::string new_state = "ok 2 12 ";  // 3 tables, 9 triggers
  place.restore();
  answer(
      "DROP TABLE dd_identity; DROP TABLE dd_journal; DROP TABLE dd_journal_changes;"
      "PRAGMA user_version = 1; PRAGMA wal_checkpoint(TRUNCATE)");
  place.save();
  const auto run_one = [&](const fault_plan& faults) { return run_inside(upgrade, faults); };
  const auto look = [&](const run_result& result, disk_fault) {
    const std::string state = answer(STATE);
    EXPECT_TRUE(state == new_state || (state == old_state && result.exit_status != 0)) << state;
    if (state == new_state) {
      EXPECT_EQ(place.run({"dict", "check"}).out, "No findings.\n");
    }
  };
  EXPECT_GT(at_every_disk_call(run_one, look), 50);
  EXPECT_EQ(answer(STATE), new_state);
}

INSTANTIATE_TEST_SUITE_P(mode, every_disk_call_of_an_upgrade, testing::Values(REPLACE), mode_of);
