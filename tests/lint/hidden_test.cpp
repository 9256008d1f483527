// Findings that comments and baselines hide.
#include <gtest/gtest.h>

#include "lint/baseline.h"
#include "lint/ignores.h"
#include "lint/rules.h"
#include "lint/rules/own.h"
#include "tests/lint/findings.h"

static std::vector<lint::outcome> outcomes_in(const std::vector<lint::source>& sources) {
  return lint::outcomes_of(lint::check_own(lint::index_of(sources), {}).told, sources);
}

// What is told, and what is wrong with the comments.
static std::string told_in(const std::string& text) {
  const auto sources = sources_of({text});
  auto outcomes = outcomes_in(sources);
  lint::merge(
      lint::outcomes_of(
          lint::hide_ignored(sources, {[](const lint::rule&) { return true; }}, outcomes).told,
          sources),
      outcomes);
  lint::result told;
  for (const lint::outcome& each : outcomes) {
    if (each.hidden == lint::hidden_by::NOTHING) told.told.push_back(each.found);
  }
  return shown(sources, told);
}

static const std::pair<const char*, const char*> COMMENTS[] = {
    {"INT F { ID = 20001; } # tav-lint: ignore=missing-description old\n", ""},
    {"##tav-lint:\tignore=missing-description old\r\n# and why\nINT F { ID = 20001; }", ""},
    {"INT F { ID = 1; } # tav-lint: ignore=missing-description,number-outside-range old", ""},
    {"\xEF\xBB\xBF# tav-lint: ignore=byte-order-mark,missing-description old\nINT F { ID = 20001; "
     "}",
     ""},
    // Too far above, or behind something else.
    {"# tav-lint: ignore=missing-description old\n\nINT F { ID = 20001; }",
     "1:20 ignore-unused, 3:5 missing-description"},
    {"INT F { ID = 20001; # tav-lint: ignore=missing-description old\n} INT G { ID = 20002; }",
     "2:7 missing-description"},
    {"INT F { ID = 20001; } # tav-lint: ignore=missing-description\n", "1:23 ignore-unexplained"},
    {"INT F { ID = 20001; DESCR = \"# tav-lint: ignore=x\"; } # see # tav-lint: ignore=x", ""},
    {"# tav-lint: ignore=unknown,unused-field old\n", "1:20 ignore-unknown, 1:28 ignore-unused"},
    {"# tav-lint: ignore = unused-field\n# tav-lint:\n",
     "1:1 ignore-malformed, 2:1 ignore-malformed"},
    {"# tav-lint: ignore=,x old\n", "1:20 ignore-unknown, 1:21 ignore-unknown"},
};

TEST(comments, hide_what_they_name_on_their_line_and_the_next) {
  for (const auto& [text, told] : COMMENTS) EXPECT_EQ(told_in(text), told) << text;
}

TEST(comments, hide_nothing_without_a_word_of_the_reason) {
  const auto sources =
      sources_of({"INT F { ID = 20001; } # tav-lint: ignore=missing-description x "
                  "y \n"});
  auto outcomes = outcomes_in(sources);
  lint::hide_ignored(sources, {[](const lint::rule&) { return true; }}, outcomes);
  ASSERT_EQ(outcomes.size(), 1u);
  EXPECT_EQ(outcomes[0].reason, "x y");
}

static constexpr char BEFORE[] = "INT F { ID = 1; }\nINT F { ID = 1; }\n";

static lint::baseline baseline_of(const std::string& text) {
  lint::baseline known;
  EXPECT_EQ(lint::read_baseline(text, known), 0u);
  return known;
}

TEST(baselines, know_findings_when_lines_move_but_no_more_of_them) {
  const auto before = sources_of({BEFORE});
  const std::string text = lint::write_baseline(outcomes_in(before));
  EXPECT_EQ(text,
            "# Findings that 'tav_dict lint --baseline' does not tell: file, rule, subject.\n"
            "a.def\tmissing-description\tfield F\na.def\tmissing-description\tfield F\n"
            "a.def\tnumber-outside-range\tfield F\na.def\tnumber-outside-range\tfield F\n");
  const auto after =
      sources_of({"# moved\n\nINT F {\nID = 1; }\nINT F { ID = 2; } INT F { ID = 3; }"});
  auto outcomes = outcomes_in(after);
  ASSERT_EQ(outcomes.size(), 6u);
  EXPECT_EQ(lint::fingerprint(outcomes[0]), lint::fingerprint(outcomes_in(before)[0]));
  EXPECT_NE(lint::fingerprint(outcomes[0]), lint::fingerprint(outcomes[2]));
  lint::hide_known(baseline_of(text), outcomes);
  std::string told;
  for (const lint::outcome& each : outcomes) {
    told += each.hidden == lint::hidden_by::BASELINE ? "-" : "+";
  }
  EXPECT_EQ(told, "----++");
}

TEST(baselines, are_told_from_other_files) {
  lint::baseline known;
  const std::string head = lint::write_baseline({});
  EXPECT_EQ(lint::read_baseline("", known), 1u);
  EXPECT_EQ(lint::read_baseline("a\tb\tc\n", known), 1u);
  EXPECT_EQ(lint::read_baseline(head + "a\tb\n", known), 2u);
  EXPECT_EQ(lint::read_baseline("a\tb\tc\r\n" + head, known), 0u);
}
