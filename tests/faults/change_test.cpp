// An undo, a rename, a drop and a drop-database in which every call of the disk fails, is the last
// before the process is killed, or before the power fails: all of it is done, or nothing.
#include <unistd.h>

#include "dm/changes/back.h"
#include "dm/changes/drop_database.h"
#include "dm/open.h"
#include "dm/session.h"
#include "tests/faults/bench.h"

using wanted_things = std::vector<dm::wanted_thing>;

// What a command wants of the dictionary, whose last record has that number.
using find_wanted = bool (*)(dm::store&, const dm::database_row&, int64_t end, wanted_things&,
                             dm::problem&);

static bool undo_last(dm::store& store, const dm::database_row& database, int64_t end,
                      wanted_things& wanted, dm::problem& why) {
  std::vector<dm::refused_change> refused;
  return dm::find_undone(store, database, end - 1, wanted, refused, why);
}

static bool drop_all(dm::store& store, const dm::database_row& database, int64_t,
                     wanted_things& wanted, dm::problem& why) {
  auto drop = [&](const dm::class_row& row) {
    return wanted.push_back({dm::change_of::CLASS, row.name, {}}), true;
  };
  return store.calls->classes(&store, database.id, {}, dm::visit<dm::class_row>(drop), why);
}

static std::string renamed(std::string state) {
  static const std::string from = "\"F1\"", to = "\"F1_NEW\"";
  for (size_t at = 0; (at = state.find(from, at)) != state.npos; at += to.size()) {
    state.replace(at, from.size(), to);
  }
  return state;
}

static bool rename_field(dm::store& store, const dm::database_row& database, int64_t,
                         wanted_things& wanted, dm::problem& why) {
  auto field = [&](dm::field_row row) {
    wanted.push_back({dm::change_of::FIELD, row.name, {}});
    row.name = "F1_NEW";
    return wanted.push_back({dm::change_of::FIELD, row.name, dm::field_state(row)}), true;
  };
  auto user = [&](const dm::class_row& row) {
    return wanted.push_back({dm::change_of::CLASS, row.name, renamed(row.definition)}), true;
  };
  return store.calls->fields(&store, database.id, {dm::choice::NAMED, "F1"},
                             dm::visit<dm::field_row>(field), why) &&
         store.calls->classes(&store, database.id, {dm::choice::MENTIONING, "F1"},
                              dm::visit<dm::class_row>(user), why);
}

// What a command does in the open snapshot of the dictionary, whose last record has that number.
using change_call = bool (*)(dm::store&, const dm::settings&, int64_t end, dm::problem&);

static dm::change_purpose purpose_at(int64_t end) {
  dm::change_purpose purpose;
  purpose.seen_end = end;
  return purpose;
}

template <find_wanted find>
static bool change_wanted(dm::store& store, const dm::settings& settings, int64_t end,
                          dm::problem& why) {
  dm::database_row database{};
  dm::change_result result;
  wanted_things wanted;
  return dm::find_database(store, settings.database, 0, database, why) &&
         find(store, database, end, wanted, why) && !wanted.empty() &&
         dm::change_things(store, settings, settings.database, wanted, purpose_at(end), result);
}

static bool drop_second(dm::store& store, const dm::settings& settings, int64_t end, dm::problem&) {
  dm::change_result result;
  return dm::drop_database(store, settings, 2, purpose_at(end), result);
}

static const struct {
  const char* name;
  change_call carry_out;
  bool needs_second = false;  // a second database
} CHANGES[] = {{"undo", change_wanted<undo_last>},
               {"rename", change_wanted<rename_field>},
               {"drop", change_wanted<drop_all>},
               {"drop-database", drop_second, true}};
static change_call chosen;  // for the child process

static bool carry_out(dm::problem& why) {
  dm::settings settings;
  dm::journal_head end;
  if (!dm::read_settings(settings, why)) return false;
  const dm::store_owner store = dm::open_dictionary(settings, {}, why);
  return store != nullptr && store->calls->begin(store.get(), false, why) &&
         store->calls->journal_end(store.get(), end, why) &&
         chosen(*store, settings, end.number, why);
}

static int change(int, char**) {
  put_disk_under_plan();
  dm::problem why;
  _exit(carry_out(why) ? 0 : 1);
}

class every_disk_call_of_a_change : public fault_bench {
 protected:
  void add_second() {
    place.restore();
    EXPECT_EQ(place.run({"dict", "add-database", "0.0.0.2"}).exit_status, 0);
    EXPECT_EQ(place.run({"create", "-d", "0.0.0.2", "base.def"}).exit_status, 0);
    place.save();
  }

  void expect_all_or_nothing() {
    place.restore();
    const std::string before = content();
    const auto run_one = [&](const fault_plan& faults) { return run_inside(change, faults); };
    EXPECT_EQ(run_one({}).exit_status, 0);
    const std::string after = content();
    EXPECT_NE(before, after);
    int looked = 0;
    const auto look = [&](const run_result& result, disk_fault fault) {
      const std::string state = content();
      EXPECT_TRUE(state == after || (state == before && result.exit_status != 0));
      if (fault < disk_fault::KILL || ++looked % 4 != 0) return;  // each takes several runs' time
      EXPECT_EQ(place.run({"dict", "check"}).out, "No findings.\n");
    };
    EXPECT_GT(at_every_disk_call(run_one, look), 30);
  }
};

TEST_P(every_disk_call_of_a_change, does_all_or_nothing) {
  for (const auto& each : CHANGES) {
    SCOPED_TRACE(each.name);
    if (each.needs_second) add_second();
    chosen = each.carry_out;
    expect_all_or_nothing();
  }
}

INSTANTIATE_TEST_SUITE_P(mode, every_disk_call_of_a_change, testing::Values(REPLACE), mode_of);
