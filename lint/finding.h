// What lint finds in definition files, and where.
//
// All offsets and lengths are in bytes. A finding owns its texts.
#ifndef LINT_FINDING_H
#define LINT_FINDING_H

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "syntax/tree.h"

namespace lint {

enum class level : uint8_t { OFF, NOTE, WARNING, ERROR };

// A file, or standard input, as it is shown to people, and its text.
struct source {
  std::string name;
  syntax::tree tree;
};

// A part of a source's text: sources[source].tree.text, from start on.
struct span {
  uint32_t source;
  uint64_t start;
  uint64_t length;
};

// A second place that a finding is about, such as the first definition of what is defined twice.
struct related_place {
  span where;
  std::string sentence;
};

// What another rule says of the same mistake: one finding is told, which is that of both.
struct alias {
  std::string_view rule;
  std::string subject;
};

struct finding {
  std::string_view rule;  // the id of a row of RULES (lint/rules.h), which lives for ever
  level told;
  span where;
  std::string sentence;  // for people: the thing, both sides, the remedy; no newline
  // What it is about, in words that stay when lines move: "class /shop, entry A_FLD_X, attribute
  // SQL_COLUMN". Baselines and fingerprints are made of it.
  std::string subject{};
  std::vector<related_place> related{};
  std::vector<alias> aliases{};
  uint64_t reader_line = 0;  // of a syntax error: the line at which the reader tells it; else 0
};

}  // namespace lint

#endif
