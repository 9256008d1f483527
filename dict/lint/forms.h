// The forms in which lint tells what it found.
#ifndef DICT_LINT_FORMS_H
#define DICT_LINT_FORMS_H

#include <string>
#include <vector>

#include "dict/files.h"
#include "lint/outcome.h"

namespace dict {

struct lint_rule {
  std::string id;
  lint::level level;  // as configured
  std::string title;
  std::string cause;  // the paragraph of the page that explains it
  std::string remedy;
};

struct lint_report {
  const std::vector<lint::source>& sources;
  const std::vector<lint::outcome>& findings;  // sorted by place
  const std::vector<lint_rule>& rules;
  uint64_t left_out = 0;  // findings that are counted only
  bool is_coloured = false;
  bool is_whole = true;  // all files could be read
};

// "error", "warning", "note", "off"
const char* name_of(lint::level level);
// The level of that name; false where there is none.
bool level_of(std::string_view name, lint::level& level);

std::vector<std::string> alias_names(const lint::finding& found);

struct lint_counts {
  uint64_t errors = 0, warnings = 0, notes = 0;
  uint64_t hidden = 0;
};
lint_counts count(const lint_report& report);

// A form writes finding by finding: the text of 20,000 takes more than they do.
struct lint_form {
  const char* name;
  void (*write)(const lint_report& report, const text_sink& to);
};
struct json_page;
// Hands over what of the page is there, which is empty then. No character may be cut.
void hand_over(json_page& page, const text_sink& to);

void as_text(const lint_report& report, const text_sink& to);
void as_json(const lint_report& report, const text_sink& to);
void as_sarif(const lint_report& report, const text_sink& to);
void as_github(const lint_report& report, const text_sink& to);
void as_gitlab(const lint_report& report, const text_sink& to);
// All of them write out what a terminal would obey (dict/lint/excerpt.h).
inline constexpr lint_form LINT_FORMS[] = {{"text", as_text},
                                           {"json", as_json},
                                           {"sarif", as_sarif},
                                           {"github", as_github},
                                           {"gitlab", as_gitlab}};

}  // namespace dict

#endif
