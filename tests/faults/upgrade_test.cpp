// An upgrade of an older dictionary in which every call of the disk fails, is the last before the
// process is killed, or before the power fails: it leaves the old version or the new one.
#include <sqlite3.h>
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

class every_disk_call_of_an_upgrade : public fault_bench {
 protected:
  std::string answer(const char* sql) const {
    std::string text;
    sqlite3* db = nullptr;
    const auto take = [](void* to, int, char** values, char**) {
      return *static_cast<std::string*>(to) += std::string(values[0]) + " ", 0;
    };
    EXPECT_EQ(sqlite3_open(place.path("dictionary.db").c_str(), &db), SQLITE_OK);
    EXPECT_EQ(sqlite3_exec(db, sql, take, &text, nullptr), SQLITE_OK) << sqlite3_errmsg(db);
    sqlite3_close(db);
    return text;
  }
  void make_old() const {
    place.restore();
    answer(
        "DROP TABLE dd_identity; DROP TABLE dd_journal; DROP TABLE dd_journal_changes;"
        "PRAGMA user_version = 1; PRAGMA wal_checkpoint(TRUNCATE)");
    place.save();
  }
};

TEST_P(every_disk_call_of_an_upgrade, leaves_one_version_or_the_other) {
  static constexpr char STATE[] =
      "PRAGMA integrity_check; PRAGMA user_version;"
      "SELECT count(*) FROM sqlite_schema WHERE name LIKE 'dd_journal%' OR name LIKE 'dd_id%'";
  const std::string old_state = "ok 1 0 ";
  const std::string new_state = "ok 2 12 ";  // 3 tables, 9 triggers
  make_old();
  int runs = 0;
  for (const disk_fault fault : {disk_fault::IO_ERROR, disk_fault::FULL, disk_fault::BROKEN,
                                 disk_fault::KILL, disk_fault::POWER_LOSS}) {
    for (long n = 1;; ++n) {
      SCOPED_TRACE("call " + std::to_string(n));
      place.restore();
      plan() = {};
      plan().disk = fault;
      plan().failing_disk_call = n;
      run_options options;
      options.inside = upgrade;
      const run_result result = place.run({"upgrade"}, options);
      if (plan().disk_calls < n) break;
      ++runs;
      const std::string state = answer(STATE);
      EXPECT_TRUE(state == new_state || (state == old_state && result.exit_status != 0)) << state;
      if (state == new_state) {
        EXPECT_EQ(place.run({"dict", "check"}).out, "No findings.\n");
      }
    }
  }
  EXPECT_GT(runs, 50);
  EXPECT_EQ(answer(STATE), new_state);  // the last run met no fault
}

INSTANTIATE_TEST_SUITE_P(mode, every_disk_call_of_an_upgrade, testing::Values(REPLACE), mode_of);
