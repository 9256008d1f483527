// All that lint can find: RULES, a row each.
#ifndef LINT_RULES_H
#define LINT_RULES_H

#include <algorithm>
#include <array>

#include "deploy/findings.h"
#include "dparse/read/messages.h"
#include "lint/rule.h"
#include "lint/rules/table.h"
#include "lint/sentences.h"
#include "lint/syntax_sentences.h"

namespace lint {

// What only a dictionary can say.
inline constexpr rule DICTIONARY_RULES[] = {
    {"field-refused", level::ERROR, "The data manager refuses a field", origin::DICTIONARY},
    {"class-refused", level::ERROR, "The data manager refuses a class", origin::DICTIONARY},
    {"entry-dropped", level::WARNING, "An entry that the dictionary has would be dropped",
     origin::LOSS},
    {"length-narrowed", level::WARNING, "A length would become shorter", origin::LOSS},
};

// The reader's messages first, then the import's findings, the dictionary's, and lint's own.
inline constexpr auto RULES = [] {
  std::array<rule, std::size(dparse::MESSAGES) + std::size(SENTENCES) +
                       std::size(DICTIONARY_RULES) + OWN_RULES.size()>
      rows{};
  auto to = rows.begin();
  for (const auto& row : SYNTAX_SENTENCES)
    *to++ = {dparse::row_of(row.which).id, level::ERROR, row.title, origin::SYNTAX};
  for (const auto& row : SENTENCES) *to++ = {row.id, row.normal, row.title, origin::IMPORT};
  for (const auto& row : DICTIONARY_RULES) *to++ = row;
  for (const auto& row : OWN_RULES) *to++ = row;
  return rows;
}();

// The row of an id, or null.
constexpr const rule* find_rule(std::string_view id) {
  const auto found = std::ranges::find(RULES, id, &rule::id);
  return found == RULES.end() ? nullptr : &*found;
}

constexpr bool has_sentence(const deploy::finding_row& row) {
  using enum deploy::raising;
  if (row.kind != deploy::finding_kind::FINDING || std::string_view(row.id) == "syntax-error")
    return true;
  const auto found = std::ranges::find(SENTENCES, std::string_view(row.id), &sentence_row::id);
  const bool is_error = row.raises == ERROR || row.raises == CONFLICT_AND_ERROR;
  return found != std::end(SENTENCES) && (found->normal == level::ERROR) == is_error;
}
static_assert(std::ranges::all_of(deploy::FINDINGS, has_sentence),
              "a finding has no sentence, or is an error in one table only");
static_assert(std::ranges::all_of(RULES,
                                  [](const rule& row) {
                                    return std::ranges::count(RULES, row.id, &rule::id) == 1;
                                  }),
              "an id stands twice");

}  // namespace lint

#endif
