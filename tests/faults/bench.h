// Runs of the tool, or of commands of tav_dict, in a child process under a fault plan, and what
// they leave of the dictionary.
#ifndef TESTS_FAULTS_BENCH_H
#define TESTS_FAULTS_BENCH_H

#include <gtest/gtest.h>

#include "tests/faults/plan.h"
#include "tests/tool/workshop.h"

struct fault_row {
  const char* mode;
  std::vector<std::string> words;
  int commits = 0;
  bool has_base = true;  // the base definitions are in the dictionary before the run
  bool is_export = false;
  int exit_status = 0;                                     // without a fault
  std::vector<std::vector<std::string>> prepared_by = {};  // what is run before
  const char* sql = "";                                    // done to the dictionary last of all
};

extern const fault_row VERIFY, VERIFY_FIELDS, CREATE, REPLACE, FIELD, FIELD_NAMES, CLASS;

class fault_bench : public testing::TestWithParam<fault_row> {
 protected:
  fault_bench();
  // Runs it on the dictionary as it was before any fault.
  run_result run(const fault_plan& faults);
  // Everything that the dictionary holds, as text. The engine must find it sound and unlocked.
  std::string content() const;
  // What SQL text answers: values end with a '|', rows with a line's end.
  std::string query(const char* sql) const;
  // Runs it once for each call that it makes of the disk, and each way in which that can fail, and
  // looks at what each run left. The last run of all meets no fault, and is not looked at. Gives
  // how many met one.
  using one_look = std::function<void(const run_result&, disk_fault)>;
  int at_every_disk_call(const one_look& look);
  // Runs it once for each way that it comes to a call of the engine, which fails there.
  void on_every_way_to_engine(const std::function<void(const run_result&)>& look);

  workshop place;
  // What a run may leave: the dictionary before it, with the fields committed, with the classes.
  std::vector<std::string> states;
  run_result healthy;  // the run without a fault
  std::string left;    // content after the last run
};

// A file of the data folder.
std::string fault_data(const std::string& name);
// How many commits the run told of.
size_t commits_told(const run_result& result);

// Names the tests of a suite.
inline std::string mode_of(const testing::TestParamInfo<fault_row>& row) {
  return row.param.mode;
}

#endif
