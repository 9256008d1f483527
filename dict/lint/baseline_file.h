// Baselines as files.
#ifndef DICT_LINT_BASELINE_FILE_H
#define DICT_LINT_BASELINE_FILE_H

#include <string>

#include "dm/problem.h"
#include "lint/baseline.h"

namespace dict {

// False with the reason, where it is none.
bool read_baseline_file(const std::string& file, lint::baseline& known, dm::problem& why);

// Whether a baseline may be written there: to a new file, an empty one, or over a baseline. False
// with the reason.
bool takes_baseline(const std::string& file, dm::problem& why);

}  // namespace dict

#endif
