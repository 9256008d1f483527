// What a plan says, for people.
#include "dict/diff/losses.h"
#include "dict/lint/forms.h"
#include "dict/plan/plan.h"
#include "dict/terminal/visible.h"

namespace dict {

static std::string what_of(const std::string& name) {
  return name.rfind('/', 0) == 0 ? "class" : "field";
}

std::string lines_of(const told_plan& told, bool coloured) {
  std::string lines = lines_of(told.found, coloured, true);
  for (const std::string& name : told.rewritten) {
    lines += visible_in_output("~ " + what_of(name) + " " + name +
                               ": the order of entries, the case of letters, or LDAP attributes");
    lines += '\n';
  }
  return lines;
}

// --- The sum -------------------------------------------------------------------------------------

namespace {

struct plan_counts {
  size_t fields_added = 0, fields_changed = 0;
  size_t classes_added = 0, classes_changed = 0;
};

}  // namespace

static plan_counts count(const told_plan& told) {
  plan_counts counts;
  for (const difference& d : told.found) {
    const bool is_field = d.what == std::string_view("field");
    if (d.kind == change::NEW) ++(is_field ? counts.fields_added : counts.classes_added);
    if (d.kind == change::CHANGED) ++(is_field ? counts.fields_changed : counts.classes_changed);
  }
  for (const std::string& name : told.rewritten)
    ++(what_of(name) == "field" ? counts.fields_changed : counts.classes_changed);
  return counts;
}

static void add(std::string& sum, size_t count, const char* one, const char* many,
                const char* what) {
  if (count == 0) return;
  sum.append(sum.empty() ? "" : ", ").append(std::to_string(count)).append(" ");
  sum.append(count == 1 ? one : many).append(what);
}

std::string sum_of(const told_plan& told) {
  const plan_counts counts = count(told);
  std::string sum;
  add(sum, counts.fields_added, "field", "fields", " to add");
  add(sum, counts.fields_changed, "field", "fields", " to change");
  add(sum, counts.classes_added, "class", "classes", " to add");
  add(sum, counts.classes_changed, "class", "classes", " to change");
  add(sum, told.losses.size(), "", "", "destructive");
  return sum.empty() ? "" : sum + ".";
}

// --- All -----------------------------------------------------------------------------------------

static std::string refusal_of(const told_plan& told, bool coloured) {
  const judged& files = told.files;
  if (!is_refused(files)) return "";
  const bool has_errors = !files.errors.empty() || files.untold > 0;
  trial_result refused{answer::REFUSED, {}};
  if (!has_errors) refused.messages.push_back(files.refusal.sentence);
  const std::vector<lint_rule> no_rules;
  const lint_report report{told.sources, files.errors, no_rules, files.untold, coloured};
  std::string text = lines_of(refused, coloured);
  if (has_errors) as_text(report, [&text](std::string_view piece) { text += piece; });
  return text;
}

std::string as_text(const told_plan& told, bool coloured) {
  std::string sum = sum_of(told);
  if (sum.empty() && !is_refused(told.files)) sum = "Nothing to do.";
  if (!sum.empty()) sum += '\n';
  const std::string place =
      told.database.empty() ? "" : dm::join({"database ", told.database, ":\n"});
  return place + lines_of(told, coloured) + refusal_of(told, coloured) + sum;
}

}  // namespace dict
