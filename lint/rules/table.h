// The rules of lint's own: rows of RULES (lint/rules.h).
#ifndef LINT_RULES_TABLE_H
#define LINT_RULES_TABLE_H

#include <array>

#include "lint/rule.h"

namespace lint {

inline constexpr std::array<rule, 0> OWN_RULES{};

}  // namespace lint

#endif
