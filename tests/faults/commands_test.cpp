// Commands of tav_dict that write, in which every call of the disk fails, is the last before the
// process is killed, or before the power fails: all of it is done, or nothing.
#include <CLI/CLI.hpp>

#include "dict/commands.h"
#include "tests/faults/bench.h"

// As the main of tav_dict does.
int inside_main(int argc, char** argv) {
  CLI::App app;
  int result = dict::FAILED;
  for (const auto add : {dict::add_apply, dict::add_undo, dict::add_revert_to, dict::add_rename,
                         dict::add_drop, dict::add_move_storage, dict::add_tag, dict::add_prune,
                         dict::add_drop_database, dict::add_upgrade}) {
    add(app, result);
  }
  app.parse(argc, argv);
  return result;
}

using every_disk_call_of_a_command = fault_bench;

TEST_P(every_disk_call_of_a_command, does_all_or_nothing) {
  ASSERT_NE(states.front(), states.back());
  int looked = 0;
  const auto look = [&](const run_result& result, disk_fault) {
    const bool is_done = left == states.back();
    if (!is_done) {
      EXPECT_EQ(left, states.front());
      EXPECT_TRUE(result.exit_status == 128 + 9 || (result.exit_status == 2 && result.err != ""))
          << result.exit_status << result.err;
    }
    // It takes as long as several runs, and no program of this version checks an older dictionary.
    if (++looked % 8 != 0 || (!is_done && GetParam().sql[0] != '\0')) return;
    EXPECT_EQ(place.run({"dict", "check"}).out, "No findings.\n");
  };
  const int runs = at_every_disk_call(look);
  EXPECT_GT(runs, 30);
  RecordProperty("runs", runs);
}

static fault_row command(const char* name, std::vector<std::string> words,
                         std::vector<std::vector<std::string>> prepared_by = {}) {
  words.insert(words.begin(), "dict");
  return {.mode = name, .words = words, .commits = 1, .prepared_by = prepared_by};
}

static fault_row upgrade() {
  fault_row row = command("upgrade", {"upgrade", "--backup", "copy.db"});
  row.sql =
      "DROP TABLE dd_identity; DROP TABLE dd_journal; DROP TABLE dd_journal_changes;"
      "PRAGMA user_version = 1";
  return row;
}

INSTANTIATE_TEST_SUITE_P(
    mode, every_disk_call_of_a_command,
    testing::Values(
        command("apply", {"apply", "--yes", "new.plan"},
                {{"dict", "plan", "--output", "new.plan", "new.def"}}),
        command("undo", {"undo", "--yes", "5"}, {{"replace", "new.def"}}),
        command("revert_to", {"revert-to", "--yes", "3"}, {{"replace", "new.def"}}),
        command("rename", {"rename", "field", "--yes", "F1", "F1_NEW"}),
        command("drop", {"drop", "class", "--yes", "/c/s", "/c"}),
        command("move_storage", {"move-storage", "--yes", "/c", "--table", "t2"}),
        command("tag", {"tag", "3", "first"}),
        command("prune", {"prune", "--yes", "--before", "5"}, {{"replace", "new.def"}}),
        command("drop_database", {"drop-database", "--yes", "--backup", "copy.db", "0.0.0.2"},
                {{"dict", "add-database", "0.0.0.2"}, {"create", "-d", "0.0.0.2", "base.def"}}),
        upgrade()),
    mode_of);
