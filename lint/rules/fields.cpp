// Rules for field definitions, and for the descriptions of fields and classes.
#include <charconv>

#include "lint/rules/own.h"

namespace lint {

using syntax::node_kind;

static bool is_field(const own_run& run, const visit& visited) {
  return kind_of(run.all, visited.at()) == node_kind::FIELD;
}

void check_description(own_run& run, const visit& visited) {
  if (kind_of(run.all, visited.at()) == node_kind::IMPLEMENTATION) return;
  if (is_field(run, visited) && is_predefined(name_of(run.all, visited.at()))) return;
  node_place attribute;
  std::string text;
  const bool has_one =
      find_attribute(run.all, visited.at(), "DESCR", attribute) &&
      (!read_text(run.all, attribute, text) || text.find_first_not_of(" \t") != text.npos);
  if (has_one) return;
  report(run, "missing-description", name_span(run.all, visited.at()),
         subject_of(run.all, visited.way),
         thing_of(run.all, visited.way) + " has no description: say what it holds in DESCR.");
}

void check_field_number(own_run& run, const visit& visited) {
  if (!is_field(run, visited)) return;
  const std::string_view name = name_of(run.all, visited.at());
  node_place attribute;
  if (!find_attribute(run.all, visited.at(), "ID", attribute)) {
    const defined* first = find(run.all, node_kind::FIELD, name);
    if (first->where.source != visited.at().source ||
        first->where.definition != visited.at().definition)
      return;  // a repeat, of which nothing is sent
    return report(run, "missing-number", name_span(run.all, visited.at()),
                  subject_of(run.all, visited.way),
                  thing_of(run.all, visited.way) +
                      " has no number, and the data manager refuses it: give it an ID ('tav_dict "
                      "next-id' tells a free one).");
  }
  if (node_of(run.all, attribute).kind != node_kind::ATTRIBUTE || is_predefined(name)) return;
  const span where = value_span(run.all, attribute);
  const std::string_view word = text_of(run.all, attribute).substr(where.start, where.length);
  int64_t number = 0;
  if (std::from_chars(word.data(), word.data() + word.size(), number).ec != std::errc()) return;
  const own_options& options = run.options;
  if (number >= options.first_number && number <= options.last_number) return;
  report(run, "number-outside-range", where, subject_of(run.all, visited.way),
         "ID " + std::to_string(number) + " of " + std::string(name) +
             " is outside the range of your own fields, " + std::to_string(options.first_number) +
             " to " + std::to_string(options.last_number) + ": choose a number in it.");
}

// Where no file has a class there is nothing that could use a field.
void check_use(own_run& run, const visit& visited) {
  if (!run.has_class || !is_field(run, visited)) return;
  const std::string_view name = name_of(run.all, visited.at());
  const auto& is_used_elsewhere = run.options.is_used_elsewhere;
  const bool is_used = first_use(run.all, name) != nullptr || is_predefined(name) ||
                       (is_used_elsewhere && is_used_elsewhere(name));
  if (is_used) return;
  report(run, "unused-field", name_span(run.all, visited.at()), subject_of(run.all, visited.way),
         "No class uses " + std::string(name) + ": remove it, or use it.");
}

void check_files(own_run& run, const visit& visited) {
  if (!is_field(run, visited)) return;
  const std::string_view name = name_of(run.all, visited.at());
  const defined& first = *find(run.all, node_kind::FIELD, name);
  if (first.where.source == visited.at().source) return;
  const span there = name_span(run.all, first.where);
  report(run, "defined-in-several-files", name_span(run.all, visited.at()),
         subject_of(run.all, visited.way),
         thing_of(run.all, visited.way) + " is also defined at " + place_text(run.all, there) +
             ", whose description counts: keep one of them.",
         {{there, "First defined here."}});
}

}  // namespace lint
