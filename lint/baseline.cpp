#include "lint/baseline.h"

#include <algorithm>
#include <set>

#include "lint/rules.h"

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
  return has_head ? 0 : NO_HEAD;
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

// Whether the key is among the known ones, which then know one less.
static bool take(baseline& known, const std::string& key) {
  const auto row = known.find(key);
  if (row == known.end()) return false;
  if (--row->second == 0) known.erase(row);
  return true;
}

void hide_known(baseline& known, std::vector<outcome>& findings) {
  for (outcome& each : findings) {
    if (each.hidden != hidden_by::NOTHING) continue;
    bool is_known = take(known, each.key);
    for (const std::string& key : each.other_keys) is_known = take(known, key) || is_known;
    if (is_known) each.hidden = hidden_by::BASELINE;
  }
}

uint64_t count_outlived(const baseline& left, const std::vector<outcome>& findings,
                        const std::vector<source>& sources,
                        const std::function<bool(const rule&)>& is_checked) {
  if (has_syntax_errors(findings)) return 0;
  std::set<std::string, std::less<>> names;
  for (const source& each : sources) names.insert(shown_name(each));
  uint64_t count = 0;
  for (const auto& [key, times] : left) {
    const size_t behind_name = key.find('\t');
    const size_t behind_rule = key.find('\t', behind_name + 1);
    const rule* row =
        find_rule(std::string_view(key).substr(behind_name + 1, behind_rule - behind_name - 1));
    const bool is_here = names.contains(std::string_view(key).substr(0, behind_name));
    if (is_here && (row == nullptr || is_checked(*row))) count += times;
  }
  return count;
}

}  // namespace lint
