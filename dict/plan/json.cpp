// What a plan says, for programs. Its form, described in docs/planning.md, is part of the
// interface.
#include "dict/diff/json.h"
#include "dict/lint/places.h"
#include "dict/plan/plan.h"

namespace dict {

static void put_error(json_writer& out, places& here, const lint::finding& found) {
  const region at = region_of(here, found.where);
  out.StartObject();
  put_member(out, "file", at.file);
  put_number(out, "line", static_cast<int64_t>(at.line));
  put_number(out, "column", static_cast<int64_t>(at.column));
  put_member(out, "rule", std::string(found.rule));
  put_member(out, "message", found.sentence);
  out.EndObject();
}

static void put_differences(json_writer& out, const told_plan& told) {
  if (!is_refused(told.files)) return put_differences(out, told.found);
  put_refused_differences(out, told.files.is_readable ? &told.found : nullptr);
}

void put_told(json_writer& out, const told_plan& told) {
  places here{told.sources};
  const auto put = [&](json_writer& to, const lint::outcome& one) {
    put_error(to, here, one.found);
  };
  put_differences(out, told);
  put_texts(out, "rewritten", told.rewritten);
  put_texts(out, "destructive", told.losses);
  put_array(out, "errors", told.files.errors, put);
  put_number(out, "further_errors", static_cast<int64_t>(told.files.untold));
  put_member(out, "refusal", told.files.refusal.sentence);
}

std::string as_json(const told_plan& told) {
  json_page page;
  page.out.StartObject();
  put_flag(page.out, "refused", is_refused(told.files));
  put_told(page.out, told);
  page.out.EndObject();
  return text_of(page);
}

}  // namespace dict
