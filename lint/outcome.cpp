#include "lint/outcome.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <tuple>

#include "dd/vantor.h"
#include "dd/visible.h"
#include "lint/rules.h"

namespace lint {

namespace fs = std::filesystem;

std::string stable_name(const std::string& name) {
  const fs::path path = fs::path(name).lexically_normal();
  std::error_code unknown;
  const fs::path here = path.is_absolute() ? fs::current_path(unknown) : fs::path();
  const fs::path below = here.empty() ? path : path.lexically_relative(here);
  const bool is_inside = !below.empty() && *below.begin() != "..";
  return (is_inside ? below : path).string();
}

std::string shown_name(const source& from) {
  return dd_visible(stable_name(from.name));
}

// At one place errors come first.
static auto order_of(const finding& one) {
  return std::tuple(one.where.source, one.where.start, -static_cast<int>(one.told), one.rule,
                    std::string_view(one.sentence));
}

static std::string key_of(const std::string& name, std::string_view rule,
                          const std::string& subject) {
  return std::string(name).append("\t").append(rule).append("\t").append(dd_visible(subject));
}

std::vector<outcome> outcomes_of(std::vector<finding> found, const std::vector<source>& sources) {
  const auto is_before = [](const finding& a, const finding& b) {
    return order_of(a) < order_of(b);
  };
  const auto is_same = [](const finding& a, const finding& b) {
    return order_of(a) == order_of(b);
  };
  std::stable_sort(found.begin(), found.end(), is_before);
  found.erase(std::unique(found.begin(), found.end(), is_same), found.end());
  std::vector<std::string> names;
  for (const source& each : sources) names.push_back(shown_name(each));
  std::map<std::string, uint64_t> counts;
  std::vector<outcome> result;
  for (finding& each : found) {
    outcome& one = result.emplace_back(outcome{std::move(each)});
    const std::string& name = names[one.found.where.source];
    one.key = key_of(name, one.found.rule, one.found.subject);
    for (const alias& other : one.found.aliases)
      one.other_keys.push_back(key_of(name, other.rule, other.subject));
    one.repeat = counts[one.key]++;
  }
  return result;
}

bool has_syntax_errors(const std::vector<outcome>& findings) {
  return std::ranges::any_of(findings, [](const outcome& one) {
    return find_rule(one.found.rule)->from == origin::SYNTAX;
  });
}

void merge(std::vector<outcome> others, std::vector<outcome>& findings) {
  const auto middle = static_cast<ptrdiff_t>(findings.size());
  for (outcome& each : others) findings.push_back(std::move(each));
  std::inplace_merge(
      findings.begin(), findings.begin() + middle, findings.end(),
      [](const outcome& a, const outcome& b) { return order_of(a.found) < order_of(b.found); });
}

std::string fingerprint(const outcome& one) {
  uint64_t hash = 0xcbf29ce484222325;  // FNV-1a, which is the same everywhere and always
  for (const char c : one.key + "\t" + std::to_string(one.repeat)) {
    hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001b3;
  }
  char digits[17];
  tav_snprintf(digits, sizeof digits, "%016llx", static_cast<unsigned long long>(hash));
  return digits;
}

}  // namespace lint
