#include "dict/lint/forms.h"

namespace dict {

static constexpr const char* LEVELS[] = {"off", "note", "warning", "error"};  // by lint::level
static_assert(static_cast<int>(lint::level::ERROR) == 3);

const char* name_of(lint::level level) {
  return LEVELS[static_cast<int>(level)];
}

bool level_of(std::string_view name, lint::level& level) {
  for (int i = 0; i < 4; ++i) {
    if (name == LEVELS[i]) return level = static_cast<lint::level>(i), true;
  }
  return false;
}

std::vector<std::string> alias_names(const lint::finding& found) {
  std::vector<std::string> names;
  for (const lint::alias& each : found.aliases) names.emplace_back(each.rule);
  return names;
}

lint_counts count(const lint_report& report) {
  lint_counts counts;
  for (const lint::outcome& each : report.findings) {
    const bool is_hidden = each.hidden != lint::hidden_by::NOTHING;
    counts.hidden += is_hidden;
    counts.errors += !is_hidden && each.found.told == lint::level::ERROR;
    counts.warnings += !is_hidden && each.found.told == lint::level::WARNING;
    counts.notes += !is_hidden && each.found.told == lint::level::NOTE;
  }
  return counts;
}

}  // namespace dict
