// An undo of a deployment in which every call of the disk fails, is the last before the process is
// killed, or before the power fails: all of it is done, or nothing.
#include <unistd.h>

#include "dm/changes/back.h"
#include "dm/open.h"
#include "dm/session.h"
#include "tests/faults/bench.h"

// What 'tav_dict undo' does about the last deployment.
static bool undo_last(dm::problem& why) {
  dm::settings settings;
  dm::database_row database{};
  dm::journal_head end;
  dm::change_result result;
  std::vector<dm::wanted_thing> wanted;
  if (!dm::read_settings(settings, why)) return false;
  const dm::store_owner store = dm::open_dictionary(settings, {}, why);
  const bool is_found =
      store != nullptr && store->calls->begin(store.get(), false, why) &&
      store->calls->journal_end(store.get(), end, why) &&
      dm::find_database(*store, settings.database, 0, database, why) &&
      dm::find_undone(*store, database, end.number - 1, wanted, result.refused, why);
  dm::change_purpose purpose;
  purpose.seen_end = end.number;
  return is_found && !wanted.empty() &&
         dm::change_things(*store, settings, settings.database, wanted, purpose, result);
}

static int undo(int, char**) {
  put_disk_under_plan();
  dm::problem why;
  _exit(undo_last(why) ? 0 : 1);
}

class every_disk_call_of_an_undo : public fault_bench {};

TEST_P(every_disk_call_of_an_undo, does_all_or_nothing) {
  place.restore();
  const std::string before = content();
  const auto run_one = [&](const fault_plan& faults) { return run_inside(undo, faults); };
  EXPECT_EQ(run_one({}).exit_status, 0);
  const std::string after = content();
  EXPECT_NE(before, after);
  const auto look = [&](const run_result& result, disk_fault fault) {
    const std::string state = content();
    EXPECT_TRUE(state == after || (state == before && result.exit_status != 0));
    if (fault < disk_fault::KILL) return;
    EXPECT_EQ(place.run({"dict", "check"}).out, "No findings.\n");
  };
  EXPECT_GT(at_every_disk_call(run_one, look), 30);
}

INSTANTIATE_TEST_SUITE_P(mode, every_disk_call_of_an_undo, testing::Values(REPLACE), mode_of);
