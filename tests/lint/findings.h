// Findings as short texts.
#ifndef TESTS_LINT_FINDINGS_H
#define TESTS_LINT_FINDINGS_H

#include <string>
#include <vector>

#include "dd/list.h"
#include "lint/lint.h"

// The text is a file named "a.def"; further ones are "b.def", "c.def".
std::vector<lint::source> sources_of(const std::vector<std::string>& texts);
// "LINE:COLUMN ID" of each, with the file's letter in front unless it is the first; in their order.
std::string shown(const std::vector<lint::source>& sources, const lint::result& found);
std::string found_in(const std::vector<std::string>& texts);

// What a dictionary holds, from an export.
struct held {
  explicit held(const std::string& text);
  lint::world world(lint::world more = {});  // with both in it
  dd_list fields{DD_FIELDS}, classes{DD_CLASSES};
};

#endif
