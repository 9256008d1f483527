// What the page of changes tells.
#include <array>

#include "dict/history/telling.h"
#include "dict/site/parts.h"

namespace dict {

static void put_counts(data_writer& out, const char* key, const change_counts& counts) {
  out.Key(key);
  put_rows(out, std::array{counts.added, counts.changed, counts.deleted, counts.found},
           [&](int64_t count) { out.Int64(count); });
}

// [change, what, name, type, values, entries], told as 'show' does.
static void put_difference(data_writer& out, const difference& d) {
  out.StartArray();
  out.Int(static_cast<int>(d.kind));
  put(out, d.what);
  put(out, d.name);
  put(out, d.type);
  put_rows(out, d.values, [&](const value_change& value) {
    out.StartArray();
    put(out, value.attribute);
    put(out, value.before);
    put(out, value.after);
    out.EndArray();
  });
  put_rows(out, d.entries, [&](const difference& entry) { put_difference(out, entry); });
  out.EndArray();
}

static std::string add_changes(const std::string& name, const std::vector<difference>& changes,
                               std::vector<site_file>& files) {
  data_page page;
  put_rows(page.out, changes, [&](const difference& d) { put_difference(page.out, d); });
  files.push_back(script_of(name, page.json()));
  return files.back().name;
}

// The deployment that it gave a name: [number, tag].
static void put_named(data_writer& out, const deployment& one) {
  for (const deployment_record& record : one.records) {
    if (record.kind != dm::journal_kind::TAG) continue;
    const tag_detail tag = read_tag(record.detail);
    out.Key("named");
    out.StartArray();
    out.Int64(tag.number);
    put(out, tag.name);
    out.EndArray();
    return;
  }
}

static void put_deployment(const site_parts& parts, const std::string& name, data_writer& out,
                           const deployment& one, std::vector<site_file>& files) {
  const std::string number = std::to_string(one.number);
  out.StartObject();
  out.Key("number");
  out.Int64(one.number);
  put(out, "time", one.first.time);
  put(out, "who", who_of(one.first));
  put(out, "program", one.first.program);
  put(out, "mode", one.first.mode);
  put(out, "called", one.first.called);
  put(out, "reason", one.first.reason);
  put_counts(out, "fields", one.fields);
  put_counts(out, "classes", one.classes);
  out.Key("tags");
  put_rows(out, one.tags, [&](const std::string& tag) { put(out, tag); });
  put_named(out, one);
  out.Key("deploys");
  out.Bool(changes_definitions(one));
  const auto changes = parts.source.past.changes.find(one.number);
  if (changes != parts.source.past.changes.end()) {
    put(out, "file", add_changes(name + "/" + number, changes->second, files));
  }
  out.EndObject();
}

void put_deployments(const site_parts& parts, const std::string& name, data_writer& out,
                     std::vector<site_file>& files) {
  put_rows(out, parts.source.past.deployments,
           [&](const deployment& one) { put_deployment(parts, name, out, one, files); });
}

}  // namespace dict
