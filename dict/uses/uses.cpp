// The command.
#include "dict/uses/uses.h"

#include <iostream>
#include <memory>

#include "dict/commands.h"
#include "dict/options.h"
#include "dict/terminal/visible.h"

namespace dict {

namespace {

struct request {
  std::string name;
  std::string database;
  bool none = false;
  bool is_json = false;
};

}  // namespace

static int answer_none(reading& from, const request& asked) {
  std::vector<found_field> unused;
  dm::problem why;
  if (!find_unused(from, unused, why)) return fail(why);
  asked.is_json ? print_json(unused) : print_text(unused);
  return DONE;
}

static int answer(reading& from, const request& asked) {
  uses found;
  dm::problem why;
  if (!find_uses(from, asked.name, found, why)) return fail(why);
  asked.is_json ? print_json(asked.name, found) : print_text(found);
  if (!found.fields.empty() || !found.classes.empty() || !found.tables.empty()) return DONE;
  why.sentence = dm::join({"Neither a field nor a class nor a table is called ",
                           dm::quoted(asked.name), "; 'tav_dict list' shows them."});
  fail(why);
  return FOUND;
}

static int run(const request& asked) {
  dm::problem why;
  if (asked.none != asked.name.empty()) {
    why.sentence = "'uses' takes either a name, or --none.";
    return fail(why);
  }
  reading from;
  if (!begin_reading(asked.database, from, why)) return fail(why);
  return asked.none ? answer_none(from, asked) : answer(from, asked);
}

void add_uses(CLI::App& app, int& result) {
  const auto asked = std::make_shared<request>();
  auto* command = app.add_subcommand(
      "uses", "Tell which classes use a field, what a class has, and whose a table is");
  command->add_option("name", asked->name, "A field, a field's number, a class or a table");
  command->add_flag("--none", asked->none, "List the fields that no class uses");
  add_json_option(*command, asked->is_json);
  add_database_option(*command, asked->database);
  command->callback([asked, &result] { result = run(*asked); });
}

}  // namespace dict
