// The import's checks of what was read, each finding where it belongs.
#ifndef LINT_CHECK_H
#define LINT_CHECK_H

#include "deploy/import/import.h"
#include "lint/lint.h"
#include "lint/read.h"

namespace lint {

// Takes the definitions over. Throws std::bad_alloc.
void check_definitions(const index& all, reading& read, const world& against, result& told);

}  // namespace lint

#endif
