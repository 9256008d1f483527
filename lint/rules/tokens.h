// Subjects of syntax errors: many of one definition have nothing else in common.
#ifndef LINT_RULES_TOKENS_H
#define LINT_RULES_TOKENS_H

#include <vector>

#include "lint/finding.h"

namespace lint {

// Adds to the subject of each syntax error the word or text that it is about, or the line where it
// is about a sign, with single blanks and cut where it is long: it stays when lines move.
void name_tokens(const std::vector<source>& sources, std::vector<finding>& told);

}  // namespace lint

#endif
