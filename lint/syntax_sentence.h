// A mistake that the reader finds as lint tells it.
#ifndef LINT_SYNTAX_SENTENCE_H
#define LINT_SYNTAX_SENTENCE_H

#include "lint/index.h"
#include "lint/judge.h"

namespace lint {

// For a finding whose places are known, and what the reader says of it.
std::string syntax_sentence(const index& all, const finding& found, const verdict& told);

}  // namespace lint

#endif
