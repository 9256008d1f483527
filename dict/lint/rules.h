// The rules of lint, each with its paragraph of the pages (docs/lint.md, docs/messages.md).
#ifndef DICT_LINT_RULES_H
#define DICT_LINT_RULES_H

#include <vector>

#include "dict/lint/config.h"
#include "dict/lint/forms.h"

namespace dict {

std::vector<lint_rule> lint_rules(const lint_config& config);

// For people: a line for each.
std::string list_of(const std::vector<lint_rule>& rules);

}  // namespace dict

#endif
