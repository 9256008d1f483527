// Findings that comments and baselines hide.
#include <gtest/gtest.h>

#include <algorithm>

#include "lint/baseline.h"
#include "lint/collect.h"
#include "lint/ignores.h"
#include "lint/rules.h"
#include "lint/rules/echoes.h"
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
    // The second one is a part of the first one's reason.
    {"INT F { ID = 1; } # tav-lint: ignore=missing-description a # tav-lint: "
     "ignore=number-outside-range b",
     "1:14 number-outside-range"},
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
    {"INT F { ID = 1; } # tav-lint: ignore=missing-description, number-outside-range\t,x old",
     "1:81 ignore-unknown"},
    {"# tav-lint: ignore=,x old\n# tav-lint: ignore=x, \n",
     "1:1 ignore-malformed, 2:1 ignore-malformed"},
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
  lint::baseline known = baseline_of(text);
  lint::hide_known(known, outcomes);
  std::string told;
  for (const lint::outcome& each : outcomes) {
    told += each.hidden == lint::hidden_by::BASELINE ? "-" : "+";
  }
  EXPECT_EQ(told, "----++");
}

TEST(baselines, are_told_from_other_files) {
  lint::baseline known;
  const std::string head = lint::write_baseline({});
  EXPECT_EQ(lint::read_baseline("", known), lint::NO_HEAD);
  EXPECT_EQ(lint::read_baseline("a\tb\tc\n", known), lint::NO_HEAD);
  EXPECT_EQ(lint::read_baseline(head + "a\tb\n", known), 2u);
  EXPECT_EQ(lint::read_baseline("a\tb\tc\r\n" + head, known), 0u);
}

// One mistake, two rules: the finding goes by the names of both.
TEST(aliases, are_taken_for_the_rule_by_comments_and_baselines) {
  for (const char* rule :
       {"missing-field-definition", "field-not-defined", "column-without-table"}) {
    const auto sources = sources_of(
        {"STORABLE CLASS /a { STRING X { } } # tav-lint: ignore=" + std::string(rule) + " why\n"});
    lint::result found = lint::lint(sources, {});
    lint::drop_echoes(found.told);
    auto outcomes = lint::outcomes_of(std::move(found.told), sources);
    const auto both = std::ranges::find(outcomes, "missing-field-definition",
                                        [](const lint::outcome& one) { return one.found.rule; });
    ASSERT_NE(both, outcomes.end());
    ASSERT_EQ(both->other_keys.size(), 2u);
    const auto nothing = lint::hide_ignored(sources, {[](const auto&) { return true; }}, outcomes);
    EXPECT_EQ(both->hidden, lint::hidden_by::COMMENT) << rule;
    EXPECT_TRUE(nothing.told.empty());
    both->hidden = lint::hidden_by::NOTHING;
    lint::baseline known{{both->other_keys[0], 1}};
    lint::hide_known(known, outcomes);
    EXPECT_EQ(both->hidden, lint::hidden_by::BASELINE);
    EXPECT_TRUE(known.empty());
  }
}

TEST(baselines, count_what_occurs_no_more_in_the_files_at_hand) {
  const auto sources = sources_of({"INT F { ID = 20001; }"});
  auto outcomes = outcomes_in(sources);
  lint::baseline known{{"a.def\tmissing-description\tfield F", 2},
                       {"a.def\tname-pattern\tfield F", 4},
                       {"a.def\tgone-rule\tfield F", 8},
                       {"b.def\tmissing-description\tfield F", 16}};
  lint::hide_known(known, outcomes);
  const auto checks = [](const lint::rule& rule) { return rule.id != "name-pattern"; };
  EXPECT_EQ(lint::count_outlived(known, outcomes, sources, checks), 1u + 8u);
}

TEST(limit, counts_no_finding_that_is_switched_off) {
  lint::result found;
  found.is_off = [](std::string_view rule) { return rule == "off"; };
  for (size_t i = 0; i <= lint::MOST_TOLD; ++i)
    lint::tell(found, {"off", lint::level::ERROR, {0, 0, 0}, ""});
  lint::tell(found, {"on", lint::level::ERROR, {0, 0, 0}, ""});
  EXPECT_EQ(found.told.back().rule, "on");
  EXPECT_EQ(found.told.size(), lint::MOST_TOLD + 1);
  EXPECT_EQ(found.untold[static_cast<size_t>(lint::level::ERROR)], 0u);
}
