// What the data manager refuses, as findings.
#ifndef LINT_REFUSED_H
#define LINT_REFUSED_H

#include "lint/left_out.h"
#include "lint/lint.h"
#include "lint/subjects.h"

namespace lint {

// But what is told of the same thing already, and what is broken.
void tell_refusals(subject_finder& in, const left_out& missing, const std::vector<refusal>& all,
                   result& told);

}  // namespace lint

#endif
