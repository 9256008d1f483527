// Standard input, output and error that are closed or cannot be written: what is opened next is
// not taken for them, and a run tells what it could not read or write.
#include <gtest/gtest.h>

#include "tests/tool/workshop.h"

static const std::string OUTCOME = "Error: Unable to write the outcome to stdout\n";

// Runs a command line of a shell in which the programs are found.
static run_result shell(const workshop& place, const std::string& line) {
  run_options options;
  options.program = "/bin/sh";
  const std::string dict = TAV_DICT;
  options.env = {"PATH=" + dict.substr(0, dict.rfind('/')) + ":/usr/bin:/bin"};
  return place.run({"-c", line}, options);
}

struct descriptors_row {
  const char* line;
  int exit_status;
  std::string err;
};

static void expect(const std::vector<descriptors_row>& rows) {
  for (const descriptors_row& row : rows) {
    SCOPED_TRACE(row.line);
    const workshop place;
    place.write("a.def", "INT M_FIELD { ID = 20001; }\n");
    const run_result result = shell(place, row.line);
    EXPECT_EQ(result.exit_status, row.exit_status);
    EXPECT_EQ(result.err, row.err);
    // What is printed stands in no log and not in the dictionary.
    EXPECT_EQ(place.read("tav_deploy.tavlog").find(" {\n"), std::string::npos);
    EXPECT_EQ(place.read("tav_deploy.tavlog").find("\nError:"), std::string::npos);
    EXPECT_EQ(place.run({"dict", "check"}).out, "No findings.\n");
  }
}

TEST(descriptors, that_are_closed_are_not_given_to_others) {
  expect({
      {"tav_deploy field -d 0.0.0.1 TAV_FLD_DESCR >&-", 1,
       "Error: attempting to export fields to stdout\n"},
      {"tav_deploy verify a.def >&-", 1, OUTCOME},
      {"tav_deploy verify <&-", 1, "Error: Unable to open file: stdin\n"},
      {"tav_deploy verify a.def 2>&-", 0, ""},
      {"tav_deploy verify none.def 2>&-", 1, ""},
      {"tav_deploy create a.def <&- >&- 2>&-", 1, ""},
      {"tav_dict status 2>&-", 0, ""},
      {"tav_dict none 2>&-", 2, ""},
      {"tav_dict diff <&-", 2,
       "Error: Unable to open file: stdin\n"
       "tav_dict: The definition files have errors; nothing was compared.\n"},
      {"tav_dict explain <&-", 2, "tav_dict: Standard input cannot be read to its end.\n"},
      {"tav_dict explain <.", 2, "tav_dict: Standard input cannot be read to its end.\n"},
  });
}

// There is room for standard input alone.
TEST(descriptors, that_cannot_be_had_end_the_program) {
#ifdef __SANITIZE_ADDRESS__
  GTEST_SKIP() << "the sanitizer itself does not start here; scripts/check-plain-build runs it";
#endif
  expect({{"prlimit --nofile=1 tav_deploy verify a.def <&- >&-", 1, ""},
          {"prlimit --nofile=1 tav_dict status <&- >&-", 2, ""}});
}

// The commit is not undone: what was deployed is there, and the status says to look.
TEST(output, that_cannot_be_written_fails_an_import_that_commits_all_the_same) {
  for (const char* end : {">/dev/full", ">&-"}) {
    for (const std::string mode : {"verify", "create", "replace"}) {
      SCOPED_TRACE(mode + end);
      const workshop place;
      place.write("a.def", "INT M_FIELD { ID = 20001; }\n");
      const run_result result = shell(place, "tav_deploy " + mode + " a.def " + end);
      EXPECT_EQ(result.exit_status, 1);
      EXPECT_EQ(result.err, OUTCOME);
      EXPECT_EQ(result.log, "tav_deploy Unable to write the outcome to stdout\n");
      EXPECT_EQ(place.run({"field", "M_FIELD"}).exit_status, mode == "verify" ? 1 : 0);
    }
  }
}
