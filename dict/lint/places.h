// Where findings are, in lines and columns.
#ifndef DICT_LINT_PLACES_H
#define DICT_LINT_PLACES_H

#include <vector>

#include "lint/finding.h"

namespace dict {

// From line and column to behind the last character; columns in characters, both from 1.
struct region {
  const std::string& file;
  uint64_t line, column;
  uint64_t end_line, end_column;
};

// A place of a text that goes on from the last one that was asked for, so that a long line is not
// counted again for each of its findings.
struct cursor {
  syntax::place at{1, 0, 0};
  uint64_t characters = 0;  // before it on its line
};

struct places {
  const std::vector<lint::source>& sources;
  std::vector<cursor> starts = std::vector<cursor>(sources.size());
  std::vector<cursor> ends = std::vector<cursor>(sources.size());
};

region region_of(places& in, const lint::span& span);

}  // namespace dict

#endif
