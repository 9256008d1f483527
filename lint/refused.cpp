#include "lint/refused.h"

#include <string>
#include <unordered_set>

#include "dd/visible.h"
#include "lint/collect.h"

namespace lint {

using syntax::node_kind;

namespace {

// A refusal as a subject of the import, which borrows from it.
struct borrowed_subject {
  std::vector<deploy::entry_path> around;
  deploy::subject about{};
};

}  // namespace

static void borrow(const refusal& from, borrowed_subject& to) {
  to.around.resize(from.around.size());
  for (size_t i = 0; i < from.around.size(); ++i) {  // the innermost first
    const size_t inner = from.around.size() - 1 - i;
    to.around[i].name = from.around[inner].c_str();
    if (i > 0) to.around[i - 1].around = &to.around[i];
  }
  if (!from.class_name.empty()) to.about.class_name = from.class_name.c_str();
  if (!from.field.empty()) to.about.field = from.field.c_str();
  if (!to.around.empty()) to.about.around = to.around.data();
}

// --- What is told already ------------------------------------------------------------------------

static std::string without_attribute(const std::string& subject) {
  return subject.substr(0, subject.find(", attribute "));
}

static std::string storage_of(const std::string& class_name) {
  return "storage of " + class_name;
}

static std::unordered_set<std::string> subjects_of_errors(const result& told) {
  std::unordered_set<std::string> subjects;
  for (const finding& each : told.told) {
    if (each.told != level::ERROR) continue;
    subjects.insert(without_attribute(each.subject));
    if (each.subject.find("SQL_") != each.subject.npos)
      subjects.insert(storage_of(each.subject.substr(0, each.subject.find(','))));
  }
  return subjects;
}

static bool is_broken(const left_out& missing, const refusal& one) {
  if (one.class_name.empty()) return is_left_out(missing, {node_kind::FIELD, one.field, {}, "*"});
  return is_left_out(missing, {node_kind::INTERFACE, one.class_name, {}, "*"}) ||
         is_left_out(missing, {node_kind::IMPLEMENTATION, one.class_name, {}, "*"});
}

// --- Places --------------------------------------------------------------------------------------

static bool find_value(subject_finder& in, const deploy::subject& about, const std::string& keyword,
                       span& where) {
  using enum deploy::definition_side;
  for (const auto side : {INTERFACE, IMPLEMENTATION}) {
    const auto at = about.class_name != nullptr ? find_on(in, about, side) : find(in, about);
    node_place attribute;
    if (!at || !find_attribute(in.all, *at, keyword, attribute)) continue;
    where = value_span(in.all, attribute);
    return true;
  }
  return false;
}

static span place_of(subject_finder& in, const deploy::subject& about, const std::string& keyword) {
  span where{0, 0, 0};
  if (!keyword.empty() && find_value(in, about, keyword, where)) return where;
  if (keyword == "SQL_TABLE" && find_value(in, about, "SQL_COLUMN", where)) return where;
  const auto at = find(in, about);
  return at ? name_span(in.all, *at) : where;
}

void tell_refusals(subject_finder& in, const left_out& missing, const std::vector<refusal>& all,
                   result& told) {
  const auto known = subjects_of_errors(told);
  for (const refusal& one : all) {
    borrowed_subject subject;
    borrow(one, subject);
    const std::string words = words_of(subject.about);
    const bool is_storage = one.attribute == "SQL_TABLE" && one.field.empty();
    const bool is_told = known.contains(words) || (is_storage && known.contains(storage_of(words)));
    if (is_broken(missing, one) || (one.is_checked_before && is_told)) continue;
    const std::string_view rule = one.class_name.empty() ? "field-refused" : "class-refused";
    finding found{rule, level::ERROR, place_of(in, subject.about, one.attribute),
                  dd_visible(one.sentence), words};
    if (!one.attribute.empty()) found.subject += ", attribute " + one.attribute;
    tell(told, std::move(found));
  }
}

}  // namespace lint
