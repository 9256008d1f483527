#include "dict/lint/rules.h"

#include <sstream>

#include "dict/messages/messages.h"
#include "dict/terminal/columns.h"
#include "lint/rules.h"

namespace dict {

static const message_entry* find_entry(const message_page& page, std::string_view id) {
  const message* found = find_id(page, id);
  return found != nullptr ? &page.entries[found->entry] : nullptr;
}

std::vector<lint_rule> lint_rules(const lint_config& config) {
  const message_page own = read_messages(LINT_PAGE);
  const message_page others = read_messages(MESSAGES_PAGE);
  std::vector<lint_rule> rules;
  for (const lint::rule& each : lint::RULES) {
    lint_rule& rule = rules.emplace_back();
    rule = {std::string(each.id), level_of(config, each.id), std::string(each.title), "", ""};
    const message_entry* entry = find_entry(own, each.id);
    if (entry == nullptr) entry = find_entry(others, each.id);
    if (entry == nullptr) continue;
    rule.cause = entry->cause;
    rule.remedy = entry->remedy;
  }
  return rules;
}

std::string list_of(const std::vector<lint_rule>& rules) {
  columns table;
  for (const lint_rule& rule : rules) {
    table.rows.push_back({rule.id, name_of(rule.level), rule.title});
  }
  std::ostringstream text;
  text << table;
  return text.str();
}

}  // namespace dict
