// A deployment of fields and classes in one transaction, in which every call of the disk fails, is
// the last before the process is killed, or before the power fails: it leaves all or nothing.
#include <unistd.h>

#include "dd/values.h"
#include "dm/open.h"
#include "dm/ops/deployment.h"
#include "tests/faults/bench.h"

static dd_flist element(uint32_t name_field, const char* name) {
  tav_ebuf ebuf{};
  dd_flist list(tav_flist_create(&ebuf));
  dd_set_text(list.get(), name_field, name, &ebuf);
  return list;
}

static dd_flist field(const char* name, int32_t number) {
  tav_ebuf ebuf{};
  dd_flist list = element(TAV_FLD_FIELD_NAME, name);
  dd_set_int(list.get(), TAV_FLD_FIELD_TYPE, TAV_FLDT_STRING, &ebuf);
  dd_set_int(list.get(), TAV_FLD_FIELD_NUM, number, &ebuf);
  return list;
}

static dd_flist list_of(uint32_t array, dd_flist only) {
  tav_ebuf ebuf{};
  dd_flist list(tav_flist_create(&ebuf));
  dd_append(list.get(), array, std::move(only), &ebuf);
  return list;
}

// What 'tav_dict apply' does once it knows that nothing changed.
static int apply(int, char**) {
  put_disk_under_plan();
  dm::session session;
  dm::problem why;
  dm::deployment_result result;
  if (!dm::read_settings(session.settings, why)) _exit(3);
  const uint64_t database = session.settings.database;
  const dd_flist fields = list_of(TAV_FLD_FIELD, field("F_APPLIED", 29999));
  dd_flist storable = element(TAV_FLD_NAME, "/applied");
  tav_ebuf ebuf{};
  dd_set_text(storable.get(), TAV_FLD_SQL_TABLE, "applied_t", &ebuf);
  const dd_flist classes = list_of(TAV_FLD_OBJ_DESC, std::move(storable));
  session.store = dm::open_dictionary(session.settings, {}, why);
  const bool is_done =
      session.store != nullptr && dm::begin_write(session, why) &&
      dm::write_deployment(session, {database, fields.get(), classes.get()}, result, why) &&
      dm::commit_write(session, dm::journal_kind::APPLY, database, why, "{\"plan\":\"p\"}");
  session.store.reset();
  _exit(is_done ? 0 : 1);
}

class every_disk_call_of_an_apply : public fault_bench {};

TEST_P(every_disk_call_of_an_apply, deploys_all_or_nothing) {
  static constexpr char STATE[] =
      "PRAGMA integrity_check; SELECT count(*) FROM dd_fields WHERE name = 'F_APPLIED';"
      "SELECT count(*) FROM dd_classes WHERE name = '/applied';"
      "SELECT count(*) FROM dd_tables WHERE name = 'applied_t';"
      "SELECT count(*) || '-' || coalesce(sum(changes), 0) FROM dd_journal WHERE kind = 'apply'";
  static constexpr char OLD_STATE[] = "ok 0 0 0 0-0 ", NEW_STATE[] = "ok 1 1 1 1-2 ";
  const auto run_one = [&](const fault_plan& faults) { return run_inside(apply, faults); };
  int looked = 0;
  const auto look = [&](const run_result& result, disk_fault) {
    const std::string state = answer(STATE);
    EXPECT_TRUE(state == NEW_STATE || (state == OLD_STATE && result.exit_status != 0)) << state;
    if (++looked % 8 != 0) return;  // each takes as long as several runs
    EXPECT_EQ(place.run({"dict", "check"}).out, "No findings.\n");
  };
  EXPECT_GT(at_every_disk_call(run_one, look), 30);
  EXPECT_EQ(answer(STATE), NEW_STATE);  // the last run met no fault
}

INSTANTIATE_TEST_SUITE_P(mode, every_disk_call_of_an_apply, testing::Values(REPLACE), mode_of);
