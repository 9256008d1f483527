#include "lint/rules/echoes.h"

#include <string>
#include <string_view>
#include <unordered_map>

#include "lint/rules.h"

namespace lint {

namespace {

// A rule that is silent where an error of somebody else is at the same place, or about the same
// thing. A named one is of the same mistake, and gets the rule as an alias.
struct echo_row {
  std::string_view rule;
  std::string_view error;  // "": any
  bool is_by_subject;
  bool has_better_sentence;  // than the error, which takes it
};

constexpr echo_row ECHOES[] = {
    {"byte-order-mark", "", false, true},
    {"number-outside-range", "", false, false},
    {"missing-number", "field-refused", false, true},
    {"not-utf8", "field-refused", true, true},
    {"not-utf8", "class-refused", true, true},
    {"text-too-long", "field-refused", true, true},
    {"text-too-long", "class-refused", true, true},
    {"name-refused", "class-refused", true, true},
    {"field-not-defined", "missing-field-definition", false, false},
    // Of a field that is not defined nobody knows whether it needs a column.
    {"column-without-table", "missing-field-definition", false, false},
    {"column-without-table", "field-not-defined", false, false},
    {"missing-column", "missing-field-definition", false, false},
    {"missing-column", "field-not-defined", false, false},
};

using errors_by_key = std::unordered_map<std::string, finding*>;

}  // namespace

static std::string key_of_place(std::string_view rule, const span& where) {
  return std::string(rule) + "@" + std::to_string(where.source) + ":" + std::to_string(where.start);
}

static std::string key_of_subject(std::string_view rule, const finding& one) {
  return std::string(rule).append("\t").append(one.subject);
}

static errors_by_key errors_of(std::vector<finding>& told) {
  errors_by_key errors;
  for (finding& each : told) {
    if (find_rule(each.rule)->from == origin::OWN || each.told != level::ERROR) continue;
    errors.emplace(key_of_place("", each.where), &each);
    errors.emplace(key_of_place(each.rule, each.where), &each);
    errors.emplace(key_of_subject(each.rule, each), &each);
  }
  return errors;
}

static bool is_echo(const errors_by_key& errors, const finding& one) {
  for (const echo_row& row : ECHOES) {
    if (row.rule != one.rule) continue;
    const auto found = errors.find(row.is_by_subject ? key_of_subject(row.error, one)
                                                     : key_of_place(row.error, one.where));
    if (found == errors.end()) continue;
    finding& error = *found->second;
    if (row.has_better_sentence) error.sentence = one.sentence;
    if (!row.error.empty() && one.told == error.told)
      error.aliases.push_back({one.rule, one.subject});
    return true;
  }
  return false;
}

void drop_echoes(std::vector<finding>& told) {
  const errors_by_key errors = errors_of(told);
  std::vector<bool> drops;
  for (const finding& each : told) drops.push_back(is_echo(errors, each));
  size_t at = 0;
  std::erase_if(told, [&](const finding&) { return drops[at++]; });
}

}  // namespace lint
