// Every call of the client library fails once, and each operation is refused once: nothing leaks
// (the sanitizers say so by the exit status), and a run that fails leaves the dictionary as it was.
#include <gtest/gtest.h>

#include <sstream>

#include "tests/tool/workshop.h"

static const char DEFINITIONS[] =
    "STRING F1 { ID = 30001; DESCR = \"one\"; }\n"
    "ARRAY F2 { ID = 30002; }\n"
    "BUF F3 { ID = 30003; }\n"
    "STORABLE CLASS /c/s { ARRAY F2 { INT TAV_FLD_LENGTH { } } }\n"
    "STORABLE CLASS /c { STRING F1 { ORDER = 1.5; } BUF F3 { } }\n"
    "STORABLE CLASS /c IMPLEMENTATION TESSEL7 { SQL_TABLE = \"t\"; STRING F1 { SQL_COLUMN = \"a\"; "
    "}"
    " BUF F3 { SQL_TABLE = \"b\"; SQL_COLUMN = \"c\"; } }\n"
    "STORABLE CLASS /c/s IMPLEMENTATION TESSEL7 { ARRAY F2 { SQL_TABLE = \"u\";"
    " INT TAV_FLD_LENGTH { SQL_COLUMN = \"d\"; } } }\n";

static run_options faulty(std::vector<std::string> env) {
  run_options options;
  options.program = TAV_FAULTY;
  options.env = std::move(env);
  return options;
}

static long count_calls(const workshop& place, const std::vector<std::string>& words) {
  place.run(words, faulty({"TAV_RECORD=record"}));
  const std::string record = place.read("record");
  const size_t at = record.rfind("calls ");
  return at == std::string::npos ? 0 : std::atol(record.c_str() + at + 6);
}

struct fault_row {
  const char* title;
  std::vector<std::string> words;
  bool deployed;  // the definitions are in the dictionary before the run
};

static const fault_row FAULTS[] = {
    {"verify", {"verify", "a.def"}, false},          {"create", {"create", "a.def"}, false},
    {"replace", {"replace", "a.def"}, true},         {"field", {"field", "-c"}, true},
    {"class", {"class", "-nmcp", "-s", "/c"}, true},
};

static void deploy(const workshop& place, const fault_row& row) {
  place.write("a.def", DEFINITIONS);
  if (!row.deployed) return;
  ASSERT_EQ(place.run({"create", "a.def"}).exit_status, 0);
}

static void check(const fault_row& row, const run_result& result, const std::string& before,
                  const std::string& now, const std::string& after) {
  ASSERT_LE(result.exit_status, 1) << result.err;
  if (result.exit_status == 0) {
    EXPECT_EQ(now, after) << row.title << result.err;
    return;
  }
  EXPECT_NE(result.err, "");
  if (result.out.find("committed successfully") == std::string::npos) {
    EXPECT_EQ(now, before) << result.err;
  }
}

TEST(every_call, fails_once_and_nothing_is_lost) {
  for (const fault_row& row : FAULTS) {
    const workshop place;
    deploy(place, row);
    const std::string before = place.dictionary();
    place.save();
    const long calls = count_calls(place, row.words);
    ASSERT_GT(calls, 20);
    const std::string after = place.dictionary();
    for (long n = 1; n <= calls; ++n) {
      SCOPED_TRACE(row.title + (" call " + std::to_string(n)));
      place.restore();
      const run_result result = place.run(row.words, faulty({"TAV_FAIL_AT=" + std::to_string(n)}));
      check(row, result, before, place.dictionary(), after);
    }
  }
}

TEST(refusals, stop_the_run_and_are_explained) {
  static const struct {
    const char* operation;
    const char* mode;
    const char* operations;  // those that the run makes
  } rows[] = {
      {"575", "verify", "575"},
      {"576", "create", "575 577 576 578 585"},  // a refused trial still checks and cleans up
      {"577", "create", "575 577"},
      {"578", "replace", "575 577 576 578 585"},
      {"585", "create", "575 577 576 578 585"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.operation);
    const workshop place;
    place.write("a.def", DEFINITIONS);
    const std::string before = place.dictionary();
    const run_result result =
        place.run({row.mode, "a.def"},
                  faulty({std::string("TAV_REFUSE=") + row.operation, "TAV_RECORD=record"}));
    EXPECT_EQ(result.exit_status, 1);
    EXPECT_EQ(result.out, "\nErrors Detected...nothing committed\n");
    const bool write_refused = row.operation[2] == '6' || row.operation[2] == '8';
    EXPECT_EQ(result.err.find("likely cause is tav.conf write flags not set.  Check DM tavlog") !=
                  std::string::npos,
              write_refused);
    std::string operations, word;
    for (std::istringstream record(place.read("record")); record >> word;) {
      if (word == "op" && record >> word) operations += (operations.empty() ? "" : " ") + word;
    }
    EXPECT_EQ(operations, row.operations);
    EXPECT_EQ(place.dictionary(), before);
  }
}
