// blame: who gave a field or class what it has.
#include "dict/history/blame.h"

#include <iostream>
#include <memory>

#include "dict/commands.h"
#include "dict/history/moments.h"
#include "dict/history/telling.h"
#include "dict/options.h"
#include "dict/terminal/columns.h"
#include "dict/terminal/visible.h"

namespace dict {

namespace {

struct request {
  std::string name;
  std::string database;
  bool is_json = false;
};

}  // namespace

// "    F_NAME STRING" of an entry, "        LENGTH = 10" of an attribute of it.
static std::string text_of(const blamed_thing& thing, const blamed_part& part) {
  const size_t depth = part.path.size() + (part.attribute.empty() ? 0 : 1);
  std::string text(4 * depth, ' ');
  if (!part.attribute.empty()) return text + part.attribute + " = " + part.value;
  text += part.path.empty() ? thing.name : part.path.back();
  return part.value.empty() ? text : text + " (" + part.value + ")";
}

static std::vector<std::string> row_of(const blamed_thing& thing, const blamed_part& part) {
  if (part.by.number == 0) return {"-", "before the journal", "-", text_of(thing, part)};
  const std::string number = std::to_string(part.by.deployment);
  const std::string who = part.is_found ? "was there when the journal began" : who_of(part.by);
  return {number, local_time(part.by.time), who, text_of(thing, part)};
}

static void print_text(const blamed_thing& thing) {
  columns table;
  for (const blamed_part& part : thing.parts) table.rows.push_back(row_of(thing, part));
  std::cout << table;
}

static void put(json_writer& out, const blamed_part& part) {
  const bool is_known = part.by.number != 0;
  out.StartObject();
  put_texts(out, "path", part.path);
  put_member(out, "attribute", part.attribute);
  put_member(out, "value", part.value);
  out.Key("deployment");
  is_known ? out.Int64(part.by.deployment) : out.Null();
  put_member(out, "time", part.by.time);
  put_member(out, "user", part.by.os_user);
  put_member(out, "host", part.by.os_host);
  put_member(out, "role", part.by.role);
  put_flag(out, "before_journal", !is_known || part.is_found);
  out.EndObject();
}

static void print_json(const blamed_thing& thing) {
  json_page page;
  page.out.StartObject();
  put_member(page.out, "what", thing.what == dm::change_of::CLASS ? "class" : "field");
  put_member(page.out, "name", thing.name);
  put_array(page.out, "parts", thing.parts, put);
  page.out.EndObject();
  print(page);
}

static int run(const request& asked) {
  dm::problem why;
  reading from;
  blamed_thing found;
  if (!begin_history(asked.database, from, why) || !find_blame(from, asked.name, found, why)) {
    return fail(why);
  }
  if (!found.is_there) {
    why.sentence = dm::join({"There is neither a field nor a class ", dm::quoted(asked.name),
                             " now; 'tav_dict log' with --field or --class tells of what there "
                             "was."});
    fail(why);
    return FOUND;
  }
  (asked.is_json ? print_json : print_text)(found);
  return DONE;
}

void add_blame(CLI::App& app, int& result) {
  const auto asked = std::make_shared<request>();
  auto* command = app.add_subcommand(
      "blame", "Tell for each part of a field or class which deployment made it what it is");
  command->add_option("NAME", asked->name, "A class (it begins with '/') or a field")->required();
  add_database_option(*command, asked->database);
  add_json_option(*command, asked->is_json);
  command->callback([asked, &result] { result = run(*asked); });
}

}  // namespace dict
