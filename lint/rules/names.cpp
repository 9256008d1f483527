// Rules for names: those of fields and classes, and of tables and columns.
#include <algorithm>

#include "dd/fold.h"
#include "lint/rules/own.h"

namespace lint {

static constexpr const char* KINDS[] = {"fields", "classes", "tables", "columns"};

static std::string quoted(std::string_view name) {
  std::string text("\"");
  return text.append(name).append("\"");
}

static const std::vector<name_pattern>& patterns_for(const own_run& run, named kind) {
  return run.options.patterns[static_cast<size_t>(kind)];
}

static void check_pattern(own_run& run, named kind, std::string_view name, const span& where,
                          const std::vector<node_place>& way) {
  const std::vector<name_pattern>& patterns = patterns_for(run, kind);
  const auto fit = [name](const name_pattern& one) { return fits(one, name); };
  if (patterns.empty() || std::ranges::any_of(patterns, fit)) return;
  report(run, "name-pattern", where, subject_of(run.all, way),
         quoted(name) + " does not fit what is configured for the names of " +
             KINDS[static_cast<size_t>(kind)] + " (" + patterns.front().text + "): rename it.");
}

// A class name is a path of words.
static bool has_empty_step(std::string_view name) {
  return name.find("//") != name.npos || name.ends_with('/');
}

void check_name(own_run& run, const visit& visited) {
  const std::string_view name = name_of(run.all, visited.at());
  const span where = name_span(run.all, visited.at());
  const syntax::node_kind kind = kind_of(run.all, visited.at());
  if (kind == syntax::node_kind::FIELD) {
    if (!patterns_for(run, named::FIELD).empty() && !is_predefined(name))
      check_pattern(run, named::FIELD, name, where, visited.way);
  } else if (kind == syntax::node_kind::INTERFACE) {
    check_pattern(run, named::CLASS, name, where, visited.way);
    if (!has_empty_step(name)) return;
    report(run, "name-refused", where, subject_of(run.all, visited.way),
           thing_of(run.all, visited.way) +
               " cannot have this name: behind each \"/\" the data manager wants a word.");
  }
}

// Words that SQL and nearly all of its engines reserve, sorted.
static constexpr std::string_view RESERVED[] = {"all",          "alter",        "and",
                                                "any",          "as",           "asc",
                                                "begin",        "between",      "by",
                                                "case",         "cast",         "check",
                                                "collate",      "column",       "commit",
                                                "constraint",   "create",       "cross",
                                                "current_date", "current_time", "current_timestamp",
                                                "current_user", "default",      "delete",
                                                "desc",         "distinct",     "drop",
                                                "else",         "end",          "escape",
                                                "except",       "exists",       "false",
                                                "fetch",        "for",          "foreign",
                                                "from",         "full",         "grant",
                                                "group",        "having",       "in",
                                                "index",        "inner",        "insert",
                                                "intersect",    "into",         "is",
                                                "join",         "key",          "left",
                                                "like",         "limit",        "natural",
                                                "not",          "null",         "offset",
                                                "on",           "or",           "order",
                                                "outer",        "primary",      "references",
                                                "revoke",       "right",        "rollback",
                                                "select",       "session_user", "set",
                                                "some",         "table",        "then",
                                                "to",           "trigger",      "true",
                                                "union",        "unique",       "update",
                                                "user",         "using",        "values",
                                                "view",         "when",         "where",
                                                "with"};
static_assert(std::ranges::is_sorted(RESERVED));

static bool is_reserved(std::string_view word) {
  return std::ranges::binary_search(RESERVED, word, [](std::string_view a, std::string_view b) {
    return std::ranges::lexicographical_compare(a, b, {}, dd_fold, dd_fold);
  });
}

void check_storage_names(own_run& run, const visit& visited) {
  if (kind_of(run.all, visited.at()) != syntax::node_kind::ATTRIBUTE) return;
  const int keyword = keyword_of(run.all, visited.at());
  const bool is_table = keyword == DPARSE_KEY_SQL_TABLE;
  if (!is_table && keyword != DPARSE_KEY_SQL_COLUMN) return;
  std::string name;
  if (!read_text(run.all, visited.at(), name) || name.empty()) return;
  const span where = value_span(run.all, visited.at());
  check_pattern(run, is_table ? named::TABLE : named::COLUMN, name, where, visited.way);
  if (!is_reserved(name)) return;
  report(run, "reserved-word", where, subject_of(run.all, visited.way),
         quoted(name) + " is a word that SQL reserves: as the name of a " +
             (is_table ? "table" : "column") +
             " it must be quoted in each statement; choose another.");
}

}  // namespace lint
