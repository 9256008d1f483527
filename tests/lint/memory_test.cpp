// What many findings take: those behind the told limit are only counted, and each that is told is
// handed over before the next is written.
#include <gtest/gtest.h>

#include "dict/lint/forms.h"
#include "lint/rules/own.h"
#include "tests/lint/findings.h"
#include "tests/lint/memory.h"

struct many {
  const char* head;
  const char* before;  // a number
  const char* behind;
  const char* end;
  size_t most;  // MB
};

static std::string text_of(const many& one, size_t count) {
  std::string text = one.head;
  for (size_t i = 0; i < count; ++i)
    text.append(one.before).append(std::to_string(100'000 + i)).append(one.behind);
  return text += one.end;
}

// What the containers hold at most, beside the lists of the import, which are other memory.
static size_t memory_for(const many& one, size_t count) {
  const auto sources = sources_of({text_of(one, count)});
  const size_t before = most_live = live;
  EXPECT_EQ(lint::lint(sources, {}).told.size(), lint::MOST_TOLD) << one.before;
  return most_live - before;
}

// A finding that is kept takes more than 400 bytes: as many again as are told would be 8 MB more.
TEST(memory, of_findings_behind_the_told_limit_is_that_of_what_they_are_about) {
  static constexpr many KINDS[] = {
      {"STORABLE CLASS /a {\n", "FOO = ", ";\n", "}\n", 18},
      {"STORABLE CLASS /a {\n", "INT F", " { }\n", "}\n", 27},
  };
  for (const many& each : KINDS)
    EXPECT_LT(memory_for(each, 2 * lint::MOST_TOLD) / 1'000'000, each.most) << each.before;
}

TEST(memory, of_what_is_written_is_that_of_one_finding) {
  const auto sources = sources_of({text_of({"", "INT F", " { ID = 7; }\n", "", 0}, 500)});
  const auto findings =
      lint::outcomes_of(lint::check_own(lint::index_of(sources), {}).told, sources);
  ASSERT_GE(findings.size(), 1'000u);
  for (const dict::lint_form& form : dict::LINT_FORMS) {
    size_t all = 0;
    size_t longest = 0;
    form.write({sources, findings, {}}, [&](std::string_view piece) {
      all += piece.size();
      longest = std::max(longest, piece.size());
    });
    EXPECT_GT(all, 500u * 100) << form.name;
    EXPECT_LT(longest, 2'000u) << form.name;
  }
}

static std::vector<std::string> sentences_in(const std::vector<lint::source>& sources) {
  std::vector<std::string> sentences;
  for (lint::finding& each : lint::lint(sources, {}).told)
    sentences.push_back(std::move(each.sentence));
  return sentences;
}

// Findings of every kind of step, each at an allocation that may be the one that fails.
TEST(memory, that_is_not_there_ends_the_run_and_no_finding_is_lost) {
  const auto sources =
      sources_of({"INT F { ID = 20001; } INT G { ID = 20001; } INT F { ID = 20002; DESCR = 1; }\n"
                  "STORABLE CLASS /a { INT F { } STRING G { } INT X { } } STORABLE CLASS b { }\n"
                  "STORABLE CLASS /a IMPLEMENTATION TESSEL7 { INT F { SQL_COLUMN = \"c\"; } }\n"});
  const std::vector<std::string> all = sentences_in(sources);
  EXPECT_GT(all.size(), 5u);
  size_t runs = 0;
  for (bool has_failed = true; has_failed; ++runs) {
    failing = runs + 1;
    try {
      const std::vector<std::string> told = sentences_in(sources);
      has_failed = failing == 0;
      failing = 0;
      EXPECT_EQ(told, all) << runs;
    } catch (const std::bad_alloc&) {
    }
  }
  EXPECT_GT(runs, 200u);
}
