// Every call of the client library fails once, in each mode: the run tells the whole chain of
// messages that this failure has, logs where the tool made the call, ends with status 1, leaks
// nothing, and leaves the dictionary as its last commit left it. An export's output ends before the
// first line that it could not write. The code that ends a walk is a failure in every other call.
#include <algorithm>
#include <cstring>
#include <regex>
#include <set>
#include <sstream>

#include "tests/faults/bench.h"

static std::string simplified(const std::string& err) {
  static const std::regex display(
      "Error: \\[location=<TAV_ERRLOC_(DM:4|CONNECTION:3)>[^\\]]*\\]\n\n"
      "Please check the (DM|CM) tavlog file for more information\\.\n\n");
  static const std::regex warning("Warning: .*\n");
  return std::regex_replace(std::regex_replace(err, display, "<buffer>\n"), warning, "");
}

// The chains of a kind of run are regular expressions, one a line behind its first word; in them
// "@" is a line's end, B the internal error with its buffer.
static bool is_chain(const std::string& err, const std::string& kind) {
  std::istringstream lines(fault_data("chains"));
  for (std::string line; std::getline(lines, line);) {
    if (line.rfind(kind, 0) != 0) continue;
    line = std::regex_replace(line.substr(kind.size() + 1), std::regex("B"),
                              "(Error: Internal Error@<buffer>@)");
    if (std::regex_match(err, std::regex(std::regex_replace(line, std::regex("@"), "\n")))) {
      return true;
    }
  }
  return false;
}

class every_call : public fault_bench {
 protected:
  static std::string place_of_call() {
    return plan().failed_module + (":" + std::to_string(plan().failed_line));
  }
  static bool is_of(const char* name) { return std::strstr(plan().failed_call, name) != nullptr; }

  // Every record with the failure's buffer names the place of the call that failed; what shows the
  // buffer has a record.
  void expect_logged_where_made(const run_result& result) {
    static const std::regex record(
        "errno = (\\d+)[^\n]*\n(?: [^\n]*\n){3}"
        "  line_no = (\\d+)\n  filename = ([^\n]*)\n");
    const std::string log = place.read("tav_deploy.tavlog");
    bool is_logged = plan().failed_line == 0;  // that call had no buffer
    for (std::sregex_iterator found(log.begin(), log.end(), record), end; found != end; ++found) {
      if (std::stoi((*found)[1]) != plan().failing_code) continue;
      EXPECT_EQ((*found)[3].str() + ":" + (*found)[2].str(), place_of_call());
      is_logged = true;
    }
    EXPECT_TRUE(is_logged || result.err.find("[location=") == std::string::npos);
  }

  // The output ends before the first line that could not be written.
  void expect_cut_at_a_line(const run_result& result) {
    if (!result.err.ends_with(" to stdout\n")) return;
    EXPECT_EQ(healthy.out.rfind(result.out, 0), 0u) << result.out;
    EXPECT_TRUE(result.out.empty() || result.out.ends_with('\n'));
  }

  // With the code that ends a walk, which this call is no step of, the run fails just the same.
  void expect_no_end_of_a_walk(fault_plan faults, const run_result& result) {
    const std::string left_then = left;
    faults.failing_code = TAV_ERR_NOT_FOUND;
    const run_result other = run(faults);
    expect_logged_where_made(other);
    EXPECT_EQ(other.exit_status, result.exit_status);
    EXPECT_EQ(simplified(other.err), simplified(result.err));
    EXPECT_EQ(other.out, result.out);
    EXPECT_EQ(left, left_then);
  }

  void expect_told(const run_result& result) {
    EXPECT_EQ(result.exit_status, 1) << result.err;
    static std::set<std::string> known;
    const bool exports = GetParam().is_export;
    const std::string err = simplified(result.err);
    if (known.count(err) == 0) {
      EXPECT_TRUE(is_chain(err, exports ? "export" : "import")) << result.err;
    }
    known.insert(err);
    if (exports) return;
    const bool reading = err.find(".def at line") != std::string::npos || result.out.empty();
    const bool committing = result.out.rfind(healthy.out.substr(0, 22), 0) == 0;
    if (!reading && !committing) {
      EXPECT_EQ(result.out, "\nErrors Detected...nothing committed\n");
    }
  }
};

TEST_P(every_call, fails_once_and_nothing_is_lost) {
  long n = 1;
  run_result before = healthy;   // the failure of the call before
  std::set<std::string> places;  // where calls failed
  for (;; ++n) {
    fault_plan faults;
    faults.failing_call = n;
    const run_result result = run(faults);
    if (plan().calls < n) break;
    const std::string call = plan().failed_call + (" at " + place_of_call());
    SCOPED_TRACE("call " + std::to_string(n) + ": " + call);
    EXPECT_EQ(left, states[std::min(commits_told(result), states.size() - 1)]);
    // What is merged while files are read is merged again later, and a message may lack a name.
    const bool may_be_unseen =
        !GetParam().is_export &&
        (place_of_call().starts_with("tav_deploy_import:") || is_of("tavi_flist_get"));
    const bool same = result.exit_status == healthy.exit_status && result.err == healthy.err &&
                      result.out == healthy.out && left == states.back();
    if (!same || !may_be_unseen) expect_told(result);
    expect_logged_where_made(result);
    expect_cut_at_a_line(result);
    // What stands for a missing value is had before anything of its entry is written.
    EXPECT_TRUE(!is_of("zero") || result.out == before.out) << result.out;
    before = result;
    if (places.insert(call).second && !is_of("_next")) expect_no_end_of_a_walk(faults, result);
  }
  EXPECT_GT(n, 20);
  RecordProperty("calls", static_cast<int>(n - 1));
}

using every_operation = fault_bench;  // the trial is the same in all modes

TEST_P(every_operation, is_refused_and_explained) {
  const struct {
    uint32_t refused;
    std::vector<uint32_t> made;  // a refused trial still checks and cleans up
  } rows[] = {{575, {575}},
              {577, {575, 577}},
              {576, {575, 577, 576, 578, 585}},
              {578, {575, 577, 576, 578, 585}},
              {585, {575, 577, 576, 578, 585}}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.refused);
    fault_plan faults;
    faults.refused_operation = row.refused;
    const run_result result = run(faults);
    EXPECT_EQ(result.exit_status, 1);
    EXPECT_EQ(result.out, "\nErrors Detected...nothing committed\n");
    EXPECT_EQ(result.err.find("Error: TCM OP Error, likely cause is tav.conf write flags not set.  "
                              "Check DM tavlog\n") != std::string::npos,
              row.refused == 576 || row.refused == 578);
    EXPECT_EQ(std::vector<uint32_t>(plan().operations, plan().operations + plan().operation_count),
              row.made);
    EXPECT_EQ(left, states[0]);
  }
}

INSTANTIATE_TEST_SUITE_P(mode, every_operation, testing::Values(CREATE), mode_of);
INSTANTIATE_TEST_SUITE_P(mode, every_call,
                         testing::Values(VERIFY, VERIFY_FIELDS, CREATE, REPLACE, FIELD, FIELD_NAMES,
                                         CLASS),
                         mode_of);
