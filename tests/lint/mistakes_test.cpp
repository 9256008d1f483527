// A file with more than fifty mistakes, whose comments say what is to be found, and where.
#include <gtest/gtest.h>

#include <fstream>
#include <set>
#include <sstream>

#include "tests/lint/findings.h"

using places = std::multiset<std::string>;

// What a line of expectations says about the line that follows.
static void read_expected(const std::string& line, std::vector<std::string>& expected) {
  std::istringstream words(line);
  for (std::string word; words >> word;) {
    if (word == "#<" && words >> word) expected.push_back("1 " + word);
    const size_t caret = word.find('^');
    if (caret == word.npos || caret + 1 == word.size()) continue;
    expected.push_back(std::to_string(line.find(word) + caret + 1) + " " + word.substr(caret + 1));
  }
}

static places expected_in(const std::string& text) {
  places all;
  std::vector<std::string> expected;
  size_t number = 0;
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) {
    ++number;
    const bool is_expectation =
        line.starts_with("#<") || line.starts_with("#^") ||
        (line.starts_with("# ") && line.find('^') != line.npos && line.find('"') == line.npos);
    if (is_expectation) {
      read_expected(line, expected);
      continue;
    }
    for (const std::string& each : expected) all.insert(std::to_string(number) + ":" + each);
    expected.clear();
  }
  return all;
}

static std::string content_of(const char* path) {
  std::ostringstream text;
  text << std::ifstream(path).rdbuf();
  return text.str();
}

TEST(mistakes, are_all_found_at_their_places_and_few_others) {
  const std::string text = content_of(TAV_LINT_DATA "/mistakes.def");
  places expected = expected_in(text);
  ASSERT_GE(expected.size(), 50u);
  const auto sources = sources_of({text});
  places others;
  for (const lint::finding& each : lint::lint(sources, {}).told) {
    const syntax::place at = syntax::place_at(sources[0].tree, each.where.start);
    const std::string found = std::to_string(at.line) + ":" + std::to_string(at.column + 1) + " " +
                              std::string(each.rule);
    const auto known = expected.find(found);
    known != expected.end() ? (void)expected.erase(known) : (void)others.insert(found);
  }
  for (const std::string& each : expected) ADD_FAILURE() << "not found: " << each;
  EXPECT_LE(others.size(), 5u);
  for (const std::string& each : others) std::cout << "besides: " << each << '\n';
}

TEST(mistakes, are_told_in_sentences_that_name_both_sides) {
  const auto sources = sources_of({content_of(TAV_LINT_DATA "/mistakes.def")});
  std::string told;
  const auto tell = [&](const lint::span& where, std::string_view words) {
    const syntax::place at = syntax::place_at(sources[where.source].tree, where.start);
    told += std::to_string(at.line) + ':' + std::to_string(at.column + 1) + ' ';
    told.append(words) += '\n';
  };
  for (const lint::finding& each : lint::lint(sources, {}).told) {
    tell(each.where, std::string(each.rule) + ": " + each.sentence);
    for (const lint::related_place& other : each.related) tell(other.where, other.sentence);
  }
  EXPECT_EQ(told, content_of(TAV_LINT_DATA "/mistakes.txt"));
}
