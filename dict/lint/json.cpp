// For programs; tav_dict(1) tells the shapes, which are part of the interface.
#include "dict/terminal/json.h"

#include "dict/lint/excerpt.h"
#include "dict/lint/forms.h"
#include "dict/lint/places.h"

namespace dict {

static const char* name_of(lint::hidden_by hidden) {
  static constexpr const char* NAMES[] = {"", "comment", "baseline"};
  return NAMES[static_cast<int>(hidden)];
}

static void put_region(json_writer& out, const region& at) {
  put_member(out, "file", at.file);
  put_number(out, "line", static_cast<int64_t>(at.line));
  put_number(out, "column", static_cast<int64_t>(at.column));
  put_number(out, "end_line", static_cast<int64_t>(at.end_line));
  put_number(out, "end_column", static_cast<int64_t>(at.end_column));
}

static void put_finding(json_writer& out, const lint::outcome& each, places& here, places& there) {
  const lint::finding& found = each.found;
  out.StartObject();
  put_member(out, "rule", std::string(found.rule));
  if (!found.aliases.empty()) put_texts(out, "aliases", alias_names(found));
  put_member(out, "level", name_of(found.told));
  put_member(out, "sentence", written_out(found.sentence));
  put_member(out, "subject", written_out(found.subject));
  put_region(out, region_of(here, found.where));
  if (found.reader_line != 0)
    put_number(out, "reader_line", static_cast<int64_t>(found.reader_line));
  put_array(out, "related", found.related, [&there](json_writer& to, const auto& related) {
    to.StartObject();
    put_member(to, "sentence", written_out(related.sentence));
    put_region(to, region_of(there, related.where));
    to.EndObject();
  });
  put_member(out, "hidden_by", name_of(each.hidden));
  if (each.hidden == lint::hidden_by::COMMENT) put_member(out, "reason", written_out(each.reason));
  put_member(out, "fingerprint", lint::fingerprint(each));
  out.EndObject();
}

void hand_over(json_page& page, const text_sink& to) {
  to(written_out_in_json({page.text.GetString(), page.text.GetSize()}));
  page.text.Clear();
}

void as_json(const lint_report& report, const text_sink& to) {
  json_page page;
  places here{report.sources}, there{report.sources};
  const lint_counts counts = count(report);
  page.out.StartObject();
  put_array(page.out, "findings", report.findings,
            [&](json_writer& out, const lint::outcome& each) {
              put_finding(out, each, here, there);
              hand_over(page, to);
            });
  put_number(page.out, "errors", static_cast<int64_t>(counts.errors));
  put_number(page.out, "warnings", static_cast<int64_t>(counts.warnings));
  put_number(page.out, "notes", static_cast<int64_t>(counts.notes));
  put_number(page.out, "hidden", static_cast<int64_t>(counts.hidden));
  put_number(page.out, "left_out", static_cast<int64_t>(report.left_out));
  page.out.EndObject();
  hand_over(page, to);
  to("\n");
}

static const char* severity_of(lint::level level) {
  return level == lint::level::ERROR ? "major" : level == lint::level::WARNING ? "minor" : "info";
}

void as_gitlab(const lint_report& report, const text_sink& to) {
  json_page page;
  places here{report.sources};
  page.out.StartArray();
  for (const lint::outcome& each : report.findings) {
    if (each.hidden != lint::hidden_by::NOTHING) continue;
    const region at = region_of(here, each.found.where);
    page.out.StartObject();
    put_member(page.out, "description", written_out(each.found.sentence));
    put_member(page.out, "check_name", std::string(each.found.rule));
    put_member(page.out, "fingerprint", lint::fingerprint(each));
    put_member(page.out, "severity", severity_of(each.found.told));
    page.out.Key("location");
    page.out.StartObject();
    put_member(page.out, "path", lint::stable_name(at.file));
    page.out.Key("lines");
    page.out.StartObject();
    put_number(page.out, "begin", static_cast<int64_t>(at.line));
    page.out.EndObject();
    page.out.EndObject();
    page.out.EndObject();
    hand_over(page, to);
  }
  page.out.EndArray();
  hand_over(page, to);
  to("\n");
}

}  // namespace dict
