// The rules of lint's own: rows of RULES (lint/rules.h). docs/lint.md explains each.
//
// Only what the data manager refuses for certain is an error by default, and only what has nothing
// to do with taste tells something by default: an old dictionary must not drown in warnings.
#ifndef LINT_RULES_TABLE_H
#define LINT_RULES_TABLE_H

#include <array>

#include "lint/rule.h"

namespace lint {

inline constexpr auto OWN_RULES = std::to_array<rule>({
    // --- Texts
    {"byte-order-mark", level::ERROR, "A file begins with a byte order mark", origin::OWN},
    {"not-utf8", level::ERROR, "A text or name is not UTF-8", origin::OWN},
    {"comment-not-utf8", level::NOTE, "A comment is not UTF-8", origin::OWN},
    {"text-too-long", level::ERROR, "A text is longer than the language carries", origin::OWN},

    // --- Fields
    {"missing-number", level::ERROR, "A field has no number", origin::OWN},
    {"number-outside-range", level::WARNING,
     "A field's number is outside the administrator's range", origin::OWN},
    {"unused-field", level::NOTE, "No class uses a field", origin::OWN},
    {"defined-in-several-files", level::WARNING, "A field is defined in several files",
     origin::OWN},

    // --- Names and descriptions
    {"missing-description", level::NOTE, "A field or class has no description", origin::OWN},
    {"name-refused", level::ERROR, "The data manager refuses a name", origin::OWN},
    {"name-pattern", level::WARNING, "A name does not fit the configured pattern", origin::OWN},
    {"reserved-word", level::WARNING, "SQL reserves the name of a table or column", origin::OWN},

    // --- Classes
    {"interface-without-implementation", level::NOTE, "An interface has no implementation",
     origin::OWN},
    {"repeated-order", level::NOTE, "Two entries side by side have the same order number",
     origin::OWN},

    // --- Comments to lint
    {"ignore-malformed", level::WARNING, "A comment to lint cannot be understood", origin::OWN},
    {"ignore-unknown", level::WARNING, "A comment ignores a rule that does not exist", origin::OWN},
    {"ignore-unexplained", level::WARNING, "A comment ignores a finding and gives no reason",
     origin::OWN},
    {"ignore-unused", level::WARNING, "A comment ignores a finding that is not there", origin::OWN},
});

}  // namespace lint

#endif
