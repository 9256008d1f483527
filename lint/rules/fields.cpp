// Rules for field definitions, and for the descriptions of fields and classes.
#include <algorithm>
#include <charconv>

#include "lint/rules/own.h"

namespace lint {

using syntax::node_kind;

static bool is_field(const own_run& run, const visit& visited) {
  return kind_of(run.all, visited.at()) == node_kind::FIELD;
}

void check_description(own_run& run, const visit& visited) {
  if (kind_of(run.all, visited.at()) == node_kind::IMPLEMENTATION) return;
  node_place attribute;
  std::string text;
  const bool has_one =
      find_attribute(run.all, visited.at(), "DESCR", attribute) &&
      (!read_text(run.all, attribute, text) || text.find_first_not_of(" \t") != text.npos);
  if (has_one) return;
  if (is_field(run, visited) && is_predefined(name_of(run.all, visited.at()))) return;
  report(run, "missing-description", name_span(run.all, visited.at()),
         subject_of(run.all, visited.way),
         thing_of(run.all, visited.way) + " has no description: say what it holds in DESCR.");
}

// As the reader takes it: of a number that is too long only the last 32 bits.
static bool read_number(std::string_view word, int64_t& written, int32_t& number) {
  if (std::from_chars(word.data(), word.data() + word.size(), written).ec != std::errc())
    return false;
  number = static_cast<int32_t>(static_cast<uint32_t>(written));
  return true;
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
  if (node_of(run.all, attribute).kind != node_kind::ATTRIBUTE) return;
  const span where = value_span(run.all, attribute);
  const std::string_view word = text_of(run.all, where);
  int64_t written = 0;
  int32_t number = 0;
  if (!read_number(word, written, number)) return;
  const own_options& options = run.options;
  const bool is_inside = number >= options.first_number && number <= options.last_number;
  if ((number == written && is_inside) || is_predefined(name)) return;
  if (number != written)
    return report(run, "number-outside-range", where, subject_of(run.all, visited.way),
                  "ID " + std::to_string(written) + " of " + std::string(name) +
                      " has more than 32 bits and is read as " + std::to_string(number) +
                      ": write the number that is meant.");
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
  const bool is_used =
      run.defined->is_used || is_predefined(name) || (is_used_elsewhere && is_used_elsewhere(name));
  if (is_used) return;
  report(run, "unused-field", name_span(run.all, visited.at()), subject_of(run.all, visited.way),
         "No class uses " + std::string(name) + ": remove it, or use it.");
}

static int32_t number_of(const own_run& run, const node_place& field) {
  node_place attribute;
  int64_t written = 0;
  int32_t number = 0;
  if (!find_attribute(run.all, field, "ID", attribute)) return 0;
  const span where = value_span(run.all, attribute);
  read_number(text_of(run.all, where), written, number);
  return number;
}

static std::string_view type_of(const own_run& run, const node_place& field) {
  return text_of(run.all, type_span(run.all, field));
}

void check_names_of_files(own_run& run, uint32_t source) {
  const std::vector<uint32_t>& same = run.options.same_file;
  if (!is_read_again(run.options, source)) return;
  if (std::count(same.begin(), same.begin() + source, same[source]) > 1) return;  // told already
  report(run, "defined-in-several-files", {source, 0, 0}, "file",
         "File " + run.all.sources[source].name +
             " is named more than once, and a deployment would read it each time: name it once.");
}

// Another type or number is an error already.
void check_files(own_run& run, const visit& visited) {
  if (run.all.sources.size() == 1 || !is_field(run, visited)) return;
  const std::string_view name = name_of(run.all, visited.at());
  const defined& first = *find(run.all, node_kind::FIELD, name);
  if (first.where.source == visited.at().source) return;
  if (!by_view::equal(type_of(run, first.where), type_of(run, visited.at()))) return;
  const int32_t here = number_of(run, visited.at()), before = number_of(run, first.where);
  if (here != 0 && here != before) return;
  const span there = name_span(run.all, first.where);
  report(run, "defined-in-several-files", name_span(run.all, visited.at()),
         subject_of(run.all, visited.way),
         thing_of(run.all, visited.way) + " is also defined at " + place_text(run.all, there) +
             ", whose description counts: keep one of them.",
         {{there, "First defined here."}});
}

}  // namespace lint
