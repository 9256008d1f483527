// The file of a plan. Its form, described in docs/planning.md, is part of the interface.
#include "dd/database_number.h"
#include "dict/plan/form.h"
#include "dict/plan/plan.h"
#include "dict/terminal/json.h"

namespace dict {

static std::vector<std::string> lines_in(const std::string& text) {
  std::vector<std::string> lines;
  for (size_t at = 0; at < text.size();) {
    const size_t end = std::min(text.find('\n', at), text.size());
    lines.push_back(text.substr(at, end - at));
    at = end + 1;
  }
  return lines;
}

static void put_digests(json_writer& out, const char* key, const digests& all) {
  out.Key(key);
  out.StartObject();
  for (const auto& [name, digest] : all) put_member(out, name.c_str(), digest);
  out.EndObject();
}

static void put_things(json_writer& out, const digests_of_things& things) {
  put_digests(out, FORM.fields, things.fields);
  put_digests(out, FORM.classes, things.classes);
}

static void put_dictionary(json_writer& out, const plan& made) {
  out.Key(FORM.dictionary);
  out.StartObject();
  put_member(out, FORM.name, made.name);
  put_member(out, FORM.identity, made.identity);
  put_member(out, FORM.database, dd_database_text(made.database));
  put_number(out, FORM.record, made.record);
  put_member(out, FORM.hash, made.hash);
  out.EndObject();
}

static void put_known(json_writer& out, const plan& made) {
  out.Key(FORM.looked_at);
  out.StartObject();
  put_things(out, made.known);
  put_digests(out, FORM.numbers, made.numbers);
  put_digests(out, FORM.tables, made.tables);
  put_texts(out, FORM.complete, made.complete);
  out.EndObject();
}

std::string file_of(const plan& made) {
  json_page page;
  json_writer& out = page.out;
  out.StartObject();
  put_number(out, FORM.version, PLAN_VERSION);
  put_member(out, FORM.time, made.time);
  put_member(out, FORM.user, made.user);
  put_dictionary(out, made);
  put_texts(out, FORM.changes, made.changes);
  put_texts(out, FORM.losses, made.losses);
  put_texts(out, FORM.definitions, lines_in(made.definitions));
  put_known(out, made);
  out.Key(FORM.results);
  out.StartObject();
  put_things(out, made.results);
  out.EndObject();
  out.EndObject();
  return with_digest(text_of(page));
}

}  // namespace dict
