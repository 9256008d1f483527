// The page of lint's rules says what their table says.
#include <gtest/gtest.h>

#include <map>

#include "lint/rules.h"
#include "tests/tool/sources.h"
#include "tests/tool/workshop.h"

static std::map<std::string, std::string> levels_on_page() {
  static const std::regex heading("### `([a-z0-9-]+)` \\(([a-z]+)\\)\n\n[^]{40}");
  const std::string page = slurp(TAV_ROOT "/docs/lint.md");
  std::map<std::string, std::string> levels;
  for (std::sregex_iterator it(page.begin(), page.end(), heading), end; it != end; ++it)
    levels[(*it)[1]] = (*it)[2];
  return levels;
}

TEST(lint_page, has_each_rule_that_the_page_of_messages_lacks_with_its_level) {
  static constexpr const char* LEVELS[] = {"off", "note", "warning", "error"};
  std::map<std::string, std::string> expected;
  for (const lint::rule& rule : lint::RULES) {
    if (rule.from == lint::origin::SYNTAX || rule.from == lint::origin::IMPORT) continue;
    expected[std::string(rule.id)] = LEVELS[static_cast<int>(rule.normal)];
  }
  EXPECT_EQ(levels_on_page(), expected);
}
