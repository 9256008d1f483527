// The page of messages says what the tables of messages and the sources say.
#include <gtest/gtest.h>

#include <map>
#include <set>

#include "deploy/findings.h"
#include "dparse/read/messages.h"
#include "tests/tool/sources.h"
#include "tests/tool/workshop.h"

using ids_by_text = std::map<std::string, std::string>;

static const std::regex LINE("[^\\s][^\n]*[^\\s]");

// The ids of each text, "a, b" in the order in which they stand; "" for none.
static ids_by_text messages_on_page() {
  static const std::regex heading("### `(.*)`(?: \\[(.*)\\])?");
  ids_by_text found;
  const std::string page = slurp(TAV_ROOT "/docs/messages.md");
  for (const std::string& line : matches_in(page, LINE)) {
    std::smatch match;
    if (!std::regex_match(line, match, heading)) continue;
    EXPECT_TRUE(found.emplace(match[1], match[2]).second) << "twice: " << line;
  }
  return found;
}

// As the page writes it: a heading for each line, %s for what is put in.
static void add(ids_by_text& messages, const char* text, const std::string& id) {
  static const std::regex placeholder("\\{[a-z]+\\}");
  for (const std::string& line : matches_in(std::regex_replace(text, placeholder, "%s"), LINE)) {
    std::string& ids = messages[line];
    ids += (ids.empty() ? "" : ", ") + id;
  }
}

static ids_by_text messages_in_tables() {
  ids_by_text found;
  for (const deploy::finding_row& row : deploy::FINDINGS) {
    add(found, row.text, row.id);
  }
  for (const source_text& each : texts_in("deploy", "modes")) {
    if (each.text.find('<') != each.text.npos) add(found, ("%s " + each.text).c_str(), "usage");
  }
  for (const dparse::message_row& row : dparse::MESSAGES) add(found, row.text, row.id);
  return found;
}

TEST(messages, of_the_tables_are_on_the_page_with_their_ids) {
  ids_by_text page = messages_on_page();
  const ids_by_text tables = messages_in_tables();
  for (const auto& [text, ids] : tables) EXPECT_EQ(page[text], ids) << text;
  for (const auto& [text, ids] : page) EXPECT_TRUE(ids.empty() || tables.count(text) != 0) << text;
}

TEST(messages, have_ids_of_their_own_and_are_each_reported_somewhere) {
  std::multiset<std::string> ids;
  for (const source_text& each : texts_in("deploy")) ids.insert(each.text);
  for (const deploy::finding_row& row : deploy::FINDINGS) {
    EXPECT_GT(ids.count(row.id), 1u) << "reported nowhere: " << row.id;
  }
  ids.clear();
  for (const deploy::finding_row& row : deploy::FINDINGS) ids.insert(row.id);
  for (const dparse::message_row& row : dparse::MESSAGES) ids.insert(row.id);
  for (const std::string& id : ids) EXPECT_EQ(ids.count(id), 1u) << id;
}

// The texts of other folders that somebody gets to see: a pattern for "text|statement".
static const std::pair<const char*, std::regex> SHOWN[] = {
    {"dparse/write", std::regex("^\\s*(Error|Warning):|\n\\|")},
    {"dict", std::regex("^[^|]*[a-z]{2}[^]*\\|[^]*(sentence|(join|tell|fault)\\()")},
    {"dm", std::regex("^[^|]*([a-z]{2}[^|]* | [^|]*[a-z]{2})")}};
static const std::regex UNSEEN(
    "^TCM_OP|^C=|^\\\\t|^[a-z]+ ?$|[{]\n|STORABLE|"
    "\\b(SET LOCAL|SELECT|INSERT|UPDATE|DELETE|WHERE|PRAGMA|CREATE TABLE|ALTER TABLE)\\b");

TEST(messages, of_the_sources_are_on_the_page) {
  const ids_by_text page = messages_on_page();
  std::set<std::string> shown;
  for (const auto& [folder, pattern] : SHOWN) {
    for (const source_text& each : texts_in(folder)) {
      const std::string subject = each.text + "|" + each.statement;
      if (!std::regex_search(subject, pattern) || std::regex_search(each.text, UNSEEN)) continue;
      if (each.statement.find("static_assert") != each.statement.npos) continue;  // for builders
      for (const std::string& line : matches_in(each.text, LINE)) shown.insert(line);
    }
  }
  EXPECT_GT(shown.size(), 150u);
  for (const std::string& line : shown) {
    const auto holds = [&](const auto& text) { return text.first.find(line) != line.npos; };
    EXPECT_TRUE(std::any_of(page.begin(), page.end(), holds)) << line;
  }
}

TEST(messages, without_an_id_are_in_the_sources) {
  std::string sources;
  for (const char* folder : {"dd", "dparse/write", "vantor", "dm", "dict"}) {
    for (const source_text& each : texts_in(folder)) sources += each.text + "|";
  }
  // Placeholders and the signs at which sentences are joined from pieces.
  static const std::regex between("\\s*(%[sdc]|['<>:.,;()])\\s*|$");
  for (const auto& [text, ids] : messages_on_page()) {
    if (!ids.empty() || text.rfind("errno=<TAV_ERR_", 0) == 0) continue;
    std::sregex_token_iterator it(text.begin(), text.end(), between, -1), end;
    for (; it != end; ++it) EXPECT_NE(sources.find(*it), sources.npos) << text << ": " << *it;
  }
}
