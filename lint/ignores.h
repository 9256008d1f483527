// Comments that ask not to tell a finding:
//
//   ID = 12;  # tav-lint: ignore=RULE,RULE reason
//
// Behind something such a comment is about its line; alone on a line, about the next line that
// holds more than a comment, too.
#ifndef LINT_IGNORES_H
#define LINT_IGNORES_H

#include <functional>
#include <vector>

#include "lint/lint.h"
#include "lint/outcome.h"
#include "lint/rule.h"

namespace lint {

// One rule that a comment names.
struct ignore {
  span rule;             // the id's place
  uint64_t first, last;  // the bytes that it is about
  std::string reason;
  bool is_used = false;
};

struct ignore_fault {
  span where;
  bool is_malformed;  // else no reason is given
};

struct ignores {
  std::vector<ignore> rows{};
  std::vector<ignore_fault> faults{};
};

ignores read_ignores(const syntax::tree& tree, uint32_t source);

struct hiding {
  std::function<bool(const rule&)> is_checked;  // whether this run could find it
};

struct comment_findings {
  std::vector<finding> told{};  // at most MOST_TOLD
  uint64_t untold = 0;
};

// Hides what comments ask for; gives what is wrong with the comments. After an error of syntax
// none of them counts as needless.
comment_findings hide_ignored(const std::vector<source>& sources, const hiding& how,
                              std::vector<outcome>& findings);

}  // namespace lint

#endif
