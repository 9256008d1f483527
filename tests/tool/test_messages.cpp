// The page of messages and the sources say the same.
#include <gtest/gtest.h>

#include <set>

#include "tests/tool/sources.h"
#include "tests/tool/workshop.h"

using texts = std::set<std::string>;

static texts texts_on_page() {
  const std::string page = slurp(TAV_ROOT "/docs/messages.md");
  texts found;
  for (const std::string& heading : matches_in(page, std::regex("\n### `[^\n]*`"))) {
    EXPECT_TRUE(found.insert(heading.substr(6, heading.size() - 7)).second) << "twice: " << heading;
  }
  return found;
}

// Which texts of a folder somebody gets to see: a pattern for "text|statement".
#define PRINTED "^\\s*(Error|Warning):|\n\\|"
static const std::pair<const char*, std::regex> SHOWN[] = {
    {"deploy", std::regex(PRINTED)},
    {"dparse",
     std::regex(PRINTED
                "|^[^|]* [^|]*\\|[^]*(dparse_(fail|note)\\(|expect\\(|KEY_ID, TAV|\\[\\] = )")},
    {"dict", std::regex("^[^|]*[a-z]{2}[^]*\\|[^]*(sentence|(join|tell|fault)\\()")},
    {"dm", std::regex("^[^|]*([a-z]{2}[^|]* | [^|]*[a-z]{2})")}};
static const std::regex UNSEEN(
    "^TCM_OP|^C=|^\\\\t|^[a-z]+ ?$|[{]\n|STORABLE|"
    "\\b(SET LOCAL|SELECT|INSERT|UPDATE|DELETE|WHERE|PRAGMA|CREATE TABLE)\\b");
static const std::regex LINE("[^\\s][^\n]*[^\\s]");

TEST(messages, of_the_sources_are_on_the_page) {
  const texts page = texts_on_page();
  texts shown;
  for (const auto& [folder, pattern] : SHOWN) {
    for (const source_text& each : texts_in(folder)) {
      const std::string subject = each.text + "|" + each.statement;
      if (!std::regex_search(subject, pattern) || std::regex_search(each.text, UNSEEN)) continue;
      if (each.statement.find("static_assert") != each.statement.npos) continue;  // for builders
      for (const std::string& line : matches_in(each.text, LINE)) shown.insert(line);
    }
  }
  EXPECT_GT(shown.size(), 250u);
  for (const std::string& line : shown) {
    const auto holds = [&](const std::string& text) { return text.find(line) != text.npos; };
    EXPECT_TRUE(std::any_of(page.begin(), page.end(), holds)) << line;
  }
}

TEST(messages, of_the_page_are_in_the_sources) {
  std::string sources;
  for (const char* folder : {"dd", "deploy", "dparse", "vantor", "dm", "dict"}) {
    for (const source_text& each : texts_in(folder)) sources += each.text + "|";
  }
  // Placeholders and the signs at which sentences are joined from pieces.
  static const std::regex between("\\s*(%[sdc]|['<>:.,;()])\\s*|$");
  for (const std::string& text : texts_on_page()) {
    std::sregex_token_iterator it(text.begin(), text.end(), between, -1), end;
    for (; it != end; ++it) EXPECT_NE(sources.find(*it), sources.npos) << text << ": " << *it;
  }
}
