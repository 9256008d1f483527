// Findings that were known when a baseline was written, and are not told again.
//
// A baseline is a text with a line for each: FILE, RULE and SUBJECT, parted by tabs, sorted. It
// names no lines of the file, so that it stays true when they move.
#ifndef LINT_BASELINE_H
#define LINT_BASELINE_H

#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "lint/outcome.h"
#include "lint/rule.h"

namespace lint {

// How many are known of each key.
using baseline = std::map<std::string, uint64_t, std::less<>>;

inline constexpr uint64_t NO_HEAD = UINT64_MAX;

// Gives the number of the first line that is none of a baseline, NO_HEAD where all are but no line
// says what the file is, and else 0.
uint64_t read_baseline(std::string_view text, baseline& known);

// Of all findings but those that a comment hides.
std::string write_baseline(const std::vector<outcome>& findings);

// Leaves what was known and was not found.
void hide_known(baseline& known, std::vector<outcome>& findings);

// How many of those are of the sources and of rules that this run checks. Behind an error of syntax
// nobody knows.
uint64_t count_outlived(const baseline& left, const std::vector<outcome>& findings,
                        const std::vector<source>& sources,
                        const std::function<bool(const rule&)>& is_checked);

}  // namespace lint

#endif
