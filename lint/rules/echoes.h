// Findings that say again what an error says.
#ifndef LINT_RULES_ECHOES_H
#define LINT_RULES_ECHOES_H

#include <vector>

#include "lint/finding.h"

namespace lint {

// Drops them: of one mistake one finding is told. Where their sentences name the remedy and the
// errors' do not, the errors take them. Errors that are of the same mistake take their ids, too.
void drop_echoes(std::vector<finding>& told);

}  // namespace lint

#endif
