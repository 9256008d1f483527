// Whether the import finds something only because what is broken was left out.
#ifndef LINT_EXCUSES_H
#define LINT_EXCUSES_H

#include "deploy/report.h"
#include "lint/left_out.h"

namespace lint {

bool is_excused(const left_out& missing, std::string_view rule, const deploy::subject& about);

}  // namespace lint

#endif
