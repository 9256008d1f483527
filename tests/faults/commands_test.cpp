// Commands of tav_dict in which calls fail: all of it is done, or nothing, and it is told.
#include <limits>

#include "tests/faults/bench.h"

// --- The disk ------------------------------------------------------------------------------------

// Each call fails, or is the last before the process is killed or before the power fails.
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

// The dictionary has gone on since the plan was made, so that it is judged whether it fits.
static fault_row apply_late() {
  fault_row row = command("apply_late", {"apply", "--yes", "new.plan"},
                          {{"dict", "plan", "--output", "new.plan", "new.def"},
                           {"dict", "rename", "field", "--yes", "F1", "F1_NEW"}});
  row.commits = 0;
  row.exit_status = 1;
  return row;
}

static fault_row upgrade() {
  fault_row row = command("upgrade", {"upgrade", "--backup", "copy.db"});
  row.sql =
      "DROP TABLE dd_identity; DROP TABLE dd_journal; DROP TABLE dd_journal_changes;"
      "PRAGMA user_version = 1";
  return row;
}

static const auto WRITING = testing::Values(
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
    upgrade());
INSTANTIATE_TEST_SUITE_P(mode, every_disk_call_of_a_command, WRITING, mode_of);

// --- Memory --------------------------------------------------------------------------------------

using every_allocation_of_a_command = fault_bench;

// One fails, or all from there on; later ones are tried with gaps.
TEST_P(every_allocation_of_a_command, fails_and_is_told) {
  fault_plan faults;
  faults.failing_allocation = std::numeric_limits<long>::max();
  run(faults);
  const long made = plan().allocations;
  EXPECT_GT(made, 1000);
  for (long n = 1; n <= made; n += 1 + n / 20) {
    faults.failing_allocation = n;
    faults.is_memory_gone = n % 2 == 0;
    const run_result result = run(faults);
    SCOPED_TRACE("allocation " + std::to_string(n) + " of " + std::to_string(made));
    EXPECT_EQ(left, states.front());
    if (result.exit_status == healthy.exit_status && result.out == healthy.out) continue;
    EXPECT_EQ(result.exit_status, 2) << result.out << result.err;
    EXPECT_NE(result.err.find("memory"), std::string::npos) << result.err;
  }
}

static fault_row reading(const char* name, std::vector<std::string> words, int exit_status = 0) {
  fault_row row = command(name, words, {{"replace", "new.def"}});
  row.commits = 0;
  row.exit_status = exit_status;
  return row;
}

static const auto READING =
    testing::Values(reading("list", {"list", "--tree"}), reading("uses", {"uses", "F1"}),
                    reading("export", {"export", "--at", "4"}), reading("log", {"log"}),
                    reading("show", {"show", "5"}), reading("blame", {"blame", "/c"}),
                    reading("site", {"site", "pages"}), reading("diff", {"diff", "base.def"}, 1),
                    reading("plan", {"plan", "base.def"}, 1),
                    reading("undo", {"undo", "5", "--dry-run"}), reading("check", {"check"}));
// A field that no class has an entry of.
static fault_row uses_none() {
  fault_row row = reading("uses_none", {"uses", "--none"});
  row.prepared_by = {{"create", "twice.def"}};
  return row;
}

INSTANTIATE_TEST_SUITE_P(mode, every_allocation_of_a_command, READING, mode_of);
INSTANTIATE_TEST_SUITE_P(files, every_allocation_of_a_command,
                         testing::Values(reading("lint", {"lint", "new.def"}, 1)), mode_of);

// --- The engine ----------------------------------------------------------------------------------

// That of the copy is a file's on a server, too.
static bool says_reason(const std::string& said) {
  return said.find("the engine failed; check the disk (disk I/O error)") != said.npos ||
         (on_server() &&
          said.find("the server failed; look into its log (22012: division by zero)") != said.npos);
}

// Beside scripts/with-postgres, to the server.
using every_way_to_the_engine = fault_bench;

TEST_P(every_way_to_the_engine, fails_and_is_told) {
  on_every_way_to_engine([&](const run_result& result) {
    const bool is_whole = result.exit_status == healthy.exit_status && result.out == healthy.out;
    const std::string said = result.out + result.err;
    const bool is_done = left == states.back() && GetParam().commits > 0;
    EXPECT_TRUE(is_done || left == states.front());
    if (is_done || is_whole) return;
    EXPECT_TRUE(says_reason(said)) << said;
    EXPECT_TRUE(result.exit_status == 2 || said.find("! not tried") != said.npos) << said;
  });
}

INSTANTIATE_TEST_SUITE_P(writing, every_way_to_the_engine, WRITING, mode_of);
INSTANTIATE_TEST_SUITE_P(reading, every_way_to_the_engine, READING, mode_of);
INSTANTIATE_TEST_SUITE_P(
    more, every_way_to_the_engine,
    testing::Values(
        apply_late(), command("add_database", {"add-database", "0.0.0.3"}),
        reading("status", {"status", "--json"}), reading("list_at", {"list", "--at", "4"}),
        reading("uses_class", {"uses", "/c"}), reading("uses_number", {"uses", "30001"}),
        uses_none(), reading("next_id", {"next-id", "3"}), reading("export_now", {"export"}),
        reading("export_dir", {"export", "--dir", "defs"}),
        reading("log_class", {"log", "--class", "/c"}), reading("blame_field", {"blame", "F1"}),
        reading("diff_at", {"diff", "--at", "3", "--to", "5"}, 1),
        reading("plan_file", {"plan", "--output", "copy.db", "base.def"}, 1),
        reading("lint_against", {"lint", "--against", ".", "new.def"}),
        reading("revert", {"revert-to", "3", "--dry-run"}),
        reading("rename_dry", {"rename", "class", "/c", "/z", "--dry-run"}),
        reading("drop_dry", {"drop", "class", "/c", "--with-subclasses", "--dry-run"}),
        reading("move_dry", {"move-storage", "/c", "--table", "t2", "--dry-run"}),
        reading("site_at", {"site", "pages", "--all", "--at", "4"}),
        reading("backup", {"backup", "copy.db"})),
    mode_of);
