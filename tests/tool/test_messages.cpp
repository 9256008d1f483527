// The page of messages and the sources say the same.
#include <gtest/gtest.h>

#include <regex>
#include <set>

#include "tests/tool/sources.h"

using texts = std::set<std::string>;

static std::string trimmed(const std::string& text) {
  static const std::regex around("^\\s+|\\s+$");
  return std::regex_replace(text, around, "");
}

static bool has(const std::string& text, const std::regex& pattern) {
  return std::regex_search(text, pattern);
}

static texts on_page() {
  static const std::regex heading("(?:^|\n)### `([^\n]*)`");
  const std::string page = slurp_source(TAV_ROOT "/docs/messages.md");
  texts found;
  for (std::sregex_iterator it(page.begin(), page.end(), heading), end; it != end; ++it) {
    EXPECT_TRUE(found.insert((*it)[1]).second) << "twice: " << (*it)[1];
  }
  return found;
}

// Of the folders that print whole lines by format: what is printed, and what only the log shows.
static void add_lines(texts& found, const char* folder, const std::regex& statement) {
  static const std::regex line("[^\n]+"), printed("^\\s*(Error|Warning):|\n$");
  static const std::regex unprinted("^TCM_OP|[{]\n|^\nSTORABLE"), word("[A-Za-z]{3}|Expect");
  for (const source_text& each : texts_in(folder)) {
    const bool is_line = has(each.text, printed) || has(each.statement, statement);
    if (!is_line || has(each.text, unprinted)) continue;
    for (std::sregex_iterator it(each.text.begin(), each.text.end(), line), end; it != end; ++it) {
      if (has(it->str(), word)) found.insert(trimmed(it->str()));
    }
  }
}

static texts lines_in_sources() {
  static const std::regex words("[a-z] ");
  texts found;
  add_lines(found, "deploy", std::regex("^$"));
  add_lines(found, "dparse", std::regex("dparse_fail\\(|dparse_note\\(|expect\\("));
  for (const char* table : {"dparse_attributes.cpp", "dparse_forms.h", "dparse_state.h"}) {
    for (const source_text& each : texts_in("dparse", table)) {
      if (has(each.text, words)) found.insert(each.text);
    }
  }
  found.erase("Error:");  // a prefix
  return found;
}

// Of the folders that join sentences from pieces.
static texts pieces_in_sources() {
  static const std::regex word("[a-z]"), blank(" "), told("sentence|join\\(|tell\\(");
  static const std::regex sql("\\b(SELECT|INSERT|UPDATE|DELETE|WHERE|PRAGMA|BEGIN)\\b");
  static const std::regex help("add_(option|flag|subcommand)");
  texts found;
  for (const std::string folder : {"dict", "dm"}) {
    for (const source_text& each : texts_in(folder)) {
      const std::string piece = trimmed(each.text);
      if (!has(piece, word) || !has(each.text, blank) || has(piece, sql)) continue;
      if (folder == "dict" && (!has(each.statement, told) || has(each.statement, help))) continue;
      found.insert(piece);
    }
  }
  return found;
}

TEST(messages, of_the_sources_are_on_the_page) {
  const texts page = on_page();
  const texts lines = lines_in_sources();
  const texts pieces = pieces_in_sources();
  EXPECT_GT(lines.size(), 140u);
  EXPECT_GT(pieces.size(), 80u);
  for (const std::string& line : lines) EXPECT_EQ(page.count(line), 1u) << line;
  for (const std::string& piece : pieces) {
    const auto holds = [&](const std::string& text) { return text.find(piece) != text.npos; };
    EXPECT_TRUE(std::any_of(page.begin(), page.end(), holds)) << piece;
  }
}

static const std::regex GAP("%[sdc]|\n");

static std::string without_blanks(const std::string& text) {
  static const std::regex blank("\\s");
  return std::regex_replace(text, blank, "");
}

// Whether the text is made of pieces, one after another.
static bool is_made_of(const texts& pieces, const std::string& text) {
  std::vector<bool> reached(text.size() + 1);
  reached[0] = true;
  for (size_t from = 0; from < text.size(); ++from) {
    for (size_t length = 1; reached[from] && from + length <= text.size(); ++length) {
      if (pieces.count(text.substr(from, length)) != 0) reached[from + length] = true;
    }
  }
  return reached.back();
}

TEST(messages, of_the_page_are_in_the_sources) {
  static const std::regex sign("[^A-Za-z]");
  texts pieces;
  for (const char* folder : {"dd", "deploy", "dparse", "dm", "dict"}) {
    for (const source_text& each : texts_in(folder)) {
      std::sregex_token_iterator it(each.text.begin(), each.text.end(), GAP, -1), end;
      for (; it != end; ++it) {
        const std::string piece = without_blanks(*it);
        if (piece.size() > 1 || has(piece, sign)) pieces.insert(piece);
      }
    }
  }
  for (const std::string& text : on_page()) {
    std::sregex_token_iterator it(text.begin(), text.end(), GAP, -1), end;
    for (; it != end; ++it) EXPECT_TRUE(is_made_of(pieces, without_blanks(*it))) << text;
  }
}
