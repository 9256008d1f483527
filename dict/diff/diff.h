// What differs between two sets of definitions.
//
// Fields, classes and field entries are paired by name, whatever their order and letter case. Their
// attributes are compared as the definition language would write them: what it would write alike,
// and what it cannot write at all, is no difference.
#ifndef DICT_DIFF_DIFF_H
#define DICT_DIFF_DIFF_H

#include <string>
#include <string_view>
#include <vector>

#include "dict/definitions.h"
#include "dict/terminal/progress.h"

namespace dict {

enum class change {
  NEW,
  CHANGED,
  MISSING,
  KEPT  // only values differ that a deployment leaves as they are
};

struct value_change {
  std::string_view attribute;  // its keyword; "type" for the type
  std::string before;          // as the language writes the value; empty: none
  std::string after;
  bool is_kept = false;  // a deployment leaves it as it was before
};

struct difference {
  change kind;
  const char* what;  // "field", "class" or "entry"
  std::string type;  // keyword; empty for a class
  std::string name;
  std::vector<value_change> values{};  // none for what is new or missing
  std::vector<difference> entries{};
};

struct comparison {
  bool is_deployment;  // `after` are definition files: only what deploying them would change
  bool lists_missing;  // what only `before` has; predefined fields never count
  progress& shown;     // stepped for each field and class
};

// Appends the differences in the order of `after`, then what is missing in that of `before`; false
// when a list cannot be read.
bool compare(definitions& before, definitions& after, const comparison& how,
             std::vector<difference>& found, dm::problem& why);

// How many fields and classes differ.
struct difference_counts {
  size_t added = 0;
  size_t changed = 0;
  size_t missing = 0;
};
difference_counts count(const std::vector<difference>& found);

// Whether `replace` would take the files.
enum class answer {
  UNKNOWN,  // it was not tried, or the dictionary could not be reached or written
  TAKEN,
  REFUSED
};
struct trial_result {
  answer given = answer::UNKNOWN;
  std::vector<std::string> messages{};  // why not, a line each
};

// Lets the import check the files and the dictionary try them; stores and logs nothing. Takes over
// what `files` holds. Database 0 is the login's. Throws std::bad_alloc.
trial_result try_replace(definitions& files, uint64_t database);

// A line for each thing and value, for people; what is destructive (dict/diff/losses.h) may be
// marked. And a line that says that files are refused, with the reasons.
std::string lines_of(const std::vector<difference>& found, bool coloured,
                     bool marks_losses = false);
std::string lines_of(const trial_result& tried, bool coloured);

// Both give the whole output.
std::string as_text(const std::vector<difference>& found, const trial_result& tried, bool coloured);
std::string as_json(const std::vector<difference>& found, const trial_result& tried);

}  // namespace dict

#endif
