// Every call of the client library fails once, in each mode: the run tells the whole chain of
// messages that this failure has, ends with status 1, leaks nothing, and leaves the dictionary as
// its last commit left it.
#include <algorithm>
#include <regex>
#include <set>

#include "tests/faults/bench.h"

// --- The chains -------------------------------------------------------------------------------
// B: the internal error with its buffer, displayed; C: a class.
static const char STORAGE[] =
    "(Error: while determining table/column names\n)?"
    "(Error:  Unable to obtain table/column names from (Server|new) classes\n|"
    "(Error:  while checking for unique column names\n)?"
    "Error:  while checking for unique storage names\n)?"
    "Error: while checking for class field conflicts\n";
static const char SUBCLASSES[] =
    "Error: Unable to check for parentless subclasses\nError: while checking for class conflicts\n";

static const std::vector<std::string> IMPORT_CHAINS = {
    "Error: in [a-z]+.def at line [0-9]+: (Error: Internal Error|Invalid order number '.*')\n",
    "B(Error: Unable to merge class fields\n)*"
    "(Error: Unable to merge storable class implementation with interface\n)?"
    "Error: Unable to merge class interface with implementation\n",
    "BError: Unable to (login|retreive (fields|classes) from Quorvale)\n",
    "Error: Internal Error reading userid from tav.conf\n"
    "BError: Unable to retreive fields from Quorvale\n",
    "BError: while checking for field conflicts\n",
    "B(Error: Unable to check for changing (storage specs|table and column names)\n)*"
    "Error: Unable to check for conflicting classes\nError: while checking for class conflicts\n",
    std::string("(B|Error: Internal Error\n)(Error: Unable to prepare subclass\n)?") + SUBCLASSES,
    std::string(
        "B(Error: Unable to check field types\n)+Error: Unable to verify field types for C\n") +
        SUBCLASSES,
    std::string("B(Error: Internal Error\n(Error: Unable to check field positions for C\n)+)?"
                "Error: Unable to verify class structure for C\n") +
        SUBCLASSES,
    std::string("B(Error: Unable to check duplicate array .*\n)?"
                "Error: Unable to verify class hierarchy array or substruct conflicts, C\n") +
        SUBCLASSES,
    std::string("(B|Error:  Internal Error<buffer>\n)") + STORAGE,
    "(<buffer>\n){1,2}",  // an operation that the server refuses
    "B",                  // to make a list, to count, to roll the trial back
    // A look-up: its list looks like one without the element, so findings may follow.
    std::string("(B|Error: Internal Error - parsing Flist in tav_deploy_get_field_by_id\\(\\)\n"
                "<buffer>\n)(Error: (Conflicting|Missing|missing|duplicate|Column) .*\n)*(") +
        STORAGE + ")?",
};

static const std::vector<std::string> EXPORT_CHAINS = {
    "BError: Unable to login\n",
    "(Error: Internal Error reading userid from tav.conf\n)?"
    "BError: attempting to retrieve (all fields|storable classes) from Quorvale Server\n",
    "BError: Internal Error\n",  // to filter
    "Error: Internal Error\n?Error: attempting to export fields to stdout\n",
    "(B|Internal error\n<buffer>\n)(Error: Unable to include field\n)?"
    "(Error: Unable to include class fields\n)*"
    "(Error: Unable to include fields in class during export\n)?"
    "Error: attempting to export class fields\n",
    "Error: Internal Error\n?Error: Unable to export interface fields\n"
    "Error: attempting to export class fields\n",
    "(Error: Internal Error|MISSING FIELD TYPE FOR FIELD: .*\n"
    "Error: Unable to determine field type from name: [A-Z_0-9]*)"
    "(Error: Unable to export class fields)*"
    "Error: attempting to export class definitions to stdout\n",
    "(Error: Internal Error|MISSING FIELD TYPE FOR FIELD: .*\n"
    "Error: Unable to determine field type from name: [A-Z_0-9]*)"
    "(Error: Unable to export storable class implementation)*"
    "Error: attempting to export fields to stdout\n",
    "B",  // a look-up: the export goes on without the field
};

static std::string simplified(const std::string& err) {
  static const std::regex display(
      "Error: \\[location=<TAV_ERRLOC_(DM:4|CONNECTION:3)>[^\\]]*\\]\n\n"
      "Please check the (DM|CM) tavlog file for more information\\.\n\n");
  static const std::regex warning("Warning: .*\n");
  return std::regex_replace(std::regex_replace(err, display, "<buffer>\n"), warning, "");
}

static bool is_chain(const std::string& err, bool exports) {
  for (std::string text : exports ? EXPORT_CHAINS : IMPORT_CHAINS) {
    text = std::regex_replace(text, std::regex("B"), "(Error: Internal Error\n<buffer>\n)");
    text = std::regex_replace(text, std::regex(" C\n"), " /[a-z/]+\n");
    if (std::regex_match(err, std::regex(text))) return true;
  }
  return false;
}

// --- The runs ---------------------------------------------------------------------------------

class every_call : public fault_bench {
 protected:
  void expect_told(const run_result& result) {
    EXPECT_EQ(result.exit_status, 1) << result.err;
    static std::set<std::string> known;
    const bool exports = GetParam().is_export;
    const std::string err = simplified(result.err);
    if (known.count(err) == 0) {
      EXPECT_TRUE(is_chain(err, exports)) << result.err;
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
  for (;; ++n) {
    fault_plan faults;
    faults.failing_call = n;
    const run_result result = run(faults);
    if (plan().calls < n) break;
    SCOPED_TRACE("call " + std::to_string(n) + ": " + plan().failed_call + " at " +
                 plan().failed_module + ":" + std::to_string(plan().failed_line));
    EXPECT_EQ(left, states[std::min(commits_told(result), states.size() - 1)]);
    // What does not matter to the outcome may fail unseen.
    const bool same = result.exit_status == healthy.exit_status && result.err == healthy.err &&
                      result.out == healthy.out && left == states.back();
    if (!same) expect_told(result);
  }
  EXPECT_GT(n, 50);
  RecordProperty("calls", static_cast<int>(n - 1));
}

using every_operation = fault_bench;

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

INSTANTIATE_TEST_SUITE_P(mode, every_operation, testing::Values(VERIFY, CREATE, REPLACE), mode_of);
INSTANTIATE_TEST_SUITE_P(mode, every_call,
                         testing::Values(VERIFY, VERIFY_FIELDS, CREATE, REPLACE, FIELD, CLASS),
                         mode_of);
