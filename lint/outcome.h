// Findings with what becomes of each: whether it is told, and by which name it is known from run to
// run.
#ifndef LINT_OUTCOME_H
#define LINT_OUTCOME_H

#include <string>
#include <vector>

#include "lint/finding.h"

namespace lint {

enum class hidden_by : uint8_t { NOTHING, COMMENT, BASELINE };

struct outcome {
  finding found;
  hidden_by hidden = hidden_by::NOTHING;
  std::string reason{};  // the comment's
  // File, rule and subject, parted by tabs; what of them is no printable character is written out.
  // It stays when lines move.
  std::string key{};
  std::vector<std::string> other_keys{};  // of its aliases
  uint64_t repeat = 0;                    // how many before it have the same key
};

// The file's name as seen from the working folder, however it was typed.
std::string stable_name(const std::string& name);
// The same as keys have it.
std::string shown_name(const source& from);

// Sorted by file and place. What has the same rule, place and sentence is one.
std::vector<outcome> outcomes_of(std::vector<finding> found, const std::vector<source>& sources);
bool has_syntax_errors(const std::vector<outcome>& findings);
// Puts others, of other rules, among them.
void merge(std::vector<outcome> others, std::vector<outcome>& findings);

// A number of the key and the repeat, as 16 hexadecimal digits: part of the interface.
std::string fingerprint(const outcome& one);

}  // namespace lint

#endif
