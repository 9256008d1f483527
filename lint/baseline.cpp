#include "lint/baseline.h"

#include <algorithm>

namespace lint {

static constexpr std::string_view HEAD =
    "# Findings that 'tav_dict lint --baseline' does not tell: file, rule, subject.";

static bool is_key(std::string_view line) {
  return std::count(line.begin(), line.end(), '\t') == 2 && line.find('\0') == line.npos;
}

// Lines may have been sorted or merged by others, so the head may stand anywhere but be missing.
uint64_t read_baseline(std::string_view text, baseline& known) {
  bool has_head = false;
  for (uint64_t number = 1; !text.empty(); ++number) {
    std::string_view line = text.substr(0, text.find('\n'));
    text.remove_prefix(std::min(line.size() + 1, text.size()));
    if (line.ends_with('\r')) line.remove_suffix(1);
    const bool is_head = line == HEAD;
    has_head = has_head || is_head;
    if (!is_head && !is_key(line)) return number;
    if (!is_head) ++known[std::string(line)];
  }
  return has_head ? 0 : 1;
}

std::string write_baseline(const std::vector<outcome>& findings) {
  std::vector<std::string_view> lines;
  for (const outcome& each : findings) {
    if (each.hidden != hidden_by::COMMENT) lines.push_back(each.key);
  }
  std::sort(lines.begin(), lines.end());
  std::string text(HEAD);
  text += '\n';
  for (const std::string_view line : lines) text.append(line).append("\n");
  return text;
}

void hide_known(baseline known, std::vector<outcome>& findings) {
  for (outcome& each : findings) {
    if (each.hidden != hidden_by::NOTHING) continue;
    const auto row = known.find(each.key);
    if (row == known.end() || row->second == 0) continue;
    --row->second;
    each.hidden = hidden_by::BASELINE;
  }
}

}  // namespace lint
