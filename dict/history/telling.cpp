#include "dict/history/telling.h"

#include <rapidjson/document.h>

#include <iostream>
#include <set>

#include "dict/history/moments.h"
#include "dict/terminal/columns.h"
#include "dict/terminal/visible.h"

namespace dict {

using document =
    rapidjson::GenericDocument<rapidjson::UTF8<>, rapidjson::MemoryPoolAllocator<dm::json_memory>,
                               dm::json_memory>;

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
  if (count != 0) text += (text.empty() ? "" : ", ") + std::to_string(count) + what;
}

static void print_counts(const char* kind, const change_counts& counts, const char* behind) {
  std::string text;
  add_count(text, counts.added, " added");
  add_count(text, counts.changed, " changed");
  add_count(text, counts.deleted, " deleted");
  add_count(text, counts.found, " found");
  if (!text.empty()) std::cout << INDENT << kind << ": " << text << behind << '\n';
}

static std::set<std::string> databases_of(const deployment& one) {
  std::set<std::string> databases;
  for (const deployment_record& record : one.records) databases.insert(record.database);
  databases.erase("");
  return databases;
}

static void print_line(const char* what, const std::string& text) {
  if (!text.empty()) std::cout << INDENT << what << ": " << visible{one_line(text)} << '\n';
}

static void print_tagged(const deployment& one) {
  for (const deployment_record& record : one.records) {
    if (record.kind != dm::journal_kind::TAG) continue;
    const tag_detail tag = read_tag(record.detail);
    print_line("names", "deployment " + std::to_string(tag.number) + " as " + tag.name);
  }
}

void print_deployment(const deployment& one) {
  const dm::journal_record& first = one.first;
  const std::string program = first.mode.empty() ? first.program : first.program + " " + first.mode;
  std::cout << one.number << "  " << local_time(first.time) << "  " << visible{who_of(first)}
            << "  " << visible{one_line(program)};
  for (const std::string& database : databases_of(one)) std::cout << "  " << visible{database};
  std::cout << '\n';
  print_counts("fields", one.fields, one.has_fields_only() ? " (fields only)" : "");
  print_counts("classes", one.classes, "");
  print_line("reason", first.reason);
  for (const std::string& tag : one.tags) print_line("tag", tag);
  print_tagged(one);
}

void print_call(const deployment& one) {
  document read;
  read.Parse(one.first.called.c_str());
  if (read.HasParseError() || !read.IsArray()) return;
  std::string call = one.first.program;
  for (const auto& word : read.GetArray()) {
    if (word.IsString()) call.append(" ").append(word.GetString());
  }
  print_line("called", call);
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
  document read;
  read.Parse(text.c_str());
  out.Key(key);
  if (read.HasParseError()) {
    out.Null();
  } else {
    read.Accept(out);
  }
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
