// Reads sources as an import does, and goes on behind what is broken.
#ifndef LINT_READ_H
#define LINT_READ_H

#include "lint/index.h"
#include "lint/judge.h"
#include "lint/left_out.h"
#include "lint/lint.h"

namespace lint {

// The definitions without what is broken, and what that is.
struct reading {
  definitions sound{};
  left_out missing{};
};

// All sources in their order; tells what the reader refuses.
void read_sources(const index& all, reading& into, result& told);

}  // namespace lint

#endif
