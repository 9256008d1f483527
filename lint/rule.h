// What lint can find: a rule has an id, which configurations and comments name.
#ifndef LINT_RULE_H
#define LINT_RULE_H

#include <string_view>

#include "lint/finding.h"

namespace lint {

enum class origin : uint8_t {
  SYNTAX,      // the reader's: the messages of dparse/read/messages.h
  IMPORT,      // the import's: the findings of deploy/findings.h
  DICTIONARY,  // what the data manager refuses
  LOSS,        // what a deployment would lose
  OWN          // lint's own: lint/rules/
};

struct rule {
  std::string_view id;  // part of the interface: never changed, never given to another rule
  level normal;         // where no configuration says otherwise
  std::string_view title;
  origin from;
};

}  // namespace lint

#endif
