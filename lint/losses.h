// What a deployment would lose of what the dictionary holds.
#ifndef LINT_LOSSES_H
#define LINT_LOSSES_H

#include "deploy/import/import.h"
#include "lint/left_out.h"
#include "lint/lint.h"
#include "lint/subjects.h"

namespace lint {

// Whether values of a LENGTH need not fit into another. 0: any length.
inline bool is_narrower(int32_t before, int32_t after) {
  return after != 0 && (before == 0 || before > after);
}

// Entries that classes of the dictionary have and their new definitions lack, and lengths that
// become shorter. Changed types, numbers and storage are findings of the import.
void tell_losses(subject_finder& in, const left_out& missing, deploy::import_state& state,
                 result& told);

}  // namespace lint

#endif
