#include "dict/history/telling.h"

#include <iostream>
#include <set>

#include "dict/history/moments.h"
#include "dict/parsed_json.h"
#include "dict/terminal/columns.h"
#include "dict/terminal/visible.h"

namespace dict {

static constexpr char INDENT[] = "    ";

// What people and programs may type or be called shows on one line.
static std::string one_line(std::string text) {
  for (char& c : text) {
    if (static_cast<unsigned char>(c) < ' ' || c == '\177') c = ' ';
  }
  return text;
}

// --- For people ------------------------------------------------------------------------------

std::string who_of(const dm::journal_record& record) {
  const std::string who = record.os_user + "@" + record.os_host;
  return one_line(record.role.empty() ? who : who + " as " + record.role);
}

static void add_count(std::string& text, int64_t count, const char* what) {
  if (count != 0) text.append(text.empty() ? "" : ", ").append(std::to_string(count)).append(what);
}

static void add_counts(std::string& text, const char* kind, const change_counts& counts,
                       const char* behind) {
  std::string all;
  add_count(all, counts.added, " added");
  add_count(all, counts.changed, " changed");
  add_count(all, counts.deleted, " deleted");
  add_count(all, counts.found, " found");
  if (all.empty()) return;
  text.append(INDENT).append(kind).append(": ").append(all).append(behind) += '\n';
}

static std::set<std::string> databases_of(const deployment& one) {
  std::set<std::string> databases;
  for (const deployment_record& record : one.records) databases.insert(record.database);
  databases.erase("");
  return databases;
}

static void add_line(std::string& text, const char* what, const std::string& told) {
  if (told.empty()) return;
  text.append(INDENT).append(what).append(": ");
  text.append(visible_in_output(one_line(told))) += '\n';
}

static void add_tagged(std::string& text, const deployment& one) {
  for (const deployment_record& record : one.records) {
    if (record.kind != dm::journal_kind::TAG) continue;
    const tag_detail tag = read_tag(record.detail);
    add_line(text, "names",
             dm::join({"deployment ", std::to_string(tag.number), " as ", tag.name}));
  }
}

static void add_heading(std::string& text, const deployment& one) {
  const dm::journal_record& first = one.first;
  const std::string program = first.mode.empty() ? first.program : first.program + " " + first.mode;
  text.append(std::to_string(one.number)).append("  ").append(local_time(first.time));
  text.append("  ").append(visible_in_output(who_of(first)));
  text.append("  ").append(visible_in_output(one_line(program)));
  for (const std::string& database : databases_of(one)) {
    text.append("  ").append(visible_in_output(database));
  }
  text += '\n';
}

// Written at once, because on a terminal each piece is a write of its own.
void print_deployment(const deployment& one) {
  std::string text;
  add_heading(text, one);
  add_counts(text, "fields", one.fields, one.has_fields_only() ? " (fields only)" : "");
  add_counts(text, "classes", one.classes, "");
  add_line(text, "reason", one.first.reason);
  for (const std::string& tag : one.tags) add_line(text, "tag", tag);
  add_tagged(text, one);
  std::cout << text;
}

void print_call(const deployment& one) {
  const parsed_json read = parse_json(one.first.called);
  if (!read.IsArray()) return;
  std::string call = one.first.program;
  for (const auto& word : read.GetArray()) {
    if (word.IsString()) call.append(" ").append(word.GetString());
  }
  std::string text;
  add_line(text, "called", call);
  std::cout << text;
}

// --- For programs ----------------------------------------------------------------------------

static void put_counts(json_writer& out, const char* key, const change_counts& counts) {
  out.Key(key);
  out.StartObject();
  put_number(out, "added", counts.added);
  put_number(out, "changed", counts.changed);
  put_number(out, "deleted", counts.deleted);
  put_number(out, "found", counts.found);
  out.EndObject();
}

// A text of the journal that is JSON; null where it is none.
static void put_json(json_writer& out, const char* key, const std::string& text) {
  out.Key(key);
  parse_json(text).Accept(out);
}

static void put_record(json_writer& out, const deployment_record& record) {
  out.StartObject();
  put_number(out, "record", record.number);
  put_member(out, "time", record.time);
  put_member(out, "kind", record.kind);
  put_member(out, "database", record.database);
  put_json(out, "detail", record.detail);
  out.EndObject();
}

void put_deployment(json_writer& out, const deployment& one) {
  put_number(out, "deployment", one.number);
  put_member(out, "time", one.first.time);
  put_member(out, "user", one.first.os_user);
  put_member(out, "host", one.first.os_host);
  put_member(out, "role", one.first.role);
  put_member(out, "login", one.first.login);
  put_member(out, "program", one.first.program);
  put_member(out, "version", one.first.version);
  put_member(out, "mode", one.first.mode);
  put_json(out, "arguments", one.first.called);
  put_member(out, "reason", one.first.reason);
  put_counts(out, "fields", one.fields);
  put_counts(out, "classes", one.classes);
  put_flag(out, "fields_only", one.has_fields_only());
  put_texts(out, "tags", one.tags);
  put_array(out, "records", one.records, put_record);
}

}  // namespace dict
