// A prune of the journal in which every call of the disk fails, is the last before the process is
// killed, or before the power fails: the journal is as it was, or pruned with the record of that.
#include <sqlite3.h>
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

class every_disk_call_of_a_prune : public fault_bench {
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
};

TEST_P(every_disk_call_of_a_prune, forgets_all_or_nothing) {
  static constexpr char STATE[] =
      "PRAGMA integrity_check; SELECT count(*) || '-' || max(kind = 'prune') FROM dd_journal;"
      "SELECT count(*) FROM sqlite_schema WHERE type = 'trigger'";
  place.restore();
  const std::string old_state = answer(STATE);
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
      options.inside = prune;
      const run_result result = place.run({"prune"}, options);
      if (plan().disk_calls < n) break;
      ++runs;
      const std::string state = answer(STATE);
      EXPECT_TRUE(state == "ok 1-1 9 " || (state == old_state && result.exit_status != 0)) << state;
      EXPECT_EQ(place.run({"dict", "check"}).out, "No findings.\n");
    }
  }
  EXPECT_GT(runs, 30);
  EXPECT_EQ(answer(STATE), "ok 1-1 9 ");  // the last run met no fault; all guards are there
}

INSTANTIATE_TEST_SUITE_P(mode, every_disk_call_of_a_prune, testing::Values(REPLACE), mode_of);
