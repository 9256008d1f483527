// The command.
#include "dict/list/list.h"

#include <memory>

#include "dict/commands.h"
#include "dict/history/history.h"
#include "dict/options.h"

namespace dict {

namespace {

struct request {
  std::string pattern;
  std::string database;
  std::string at;  // a point in the journal; empty: now
  bool fields = false, classes = false, tables = false;
  bool is_tree = false;
  bool is_json = false;
};

}  // namespace

// All kinds, where none is named; a tree is one of classes.
static listing kinds_of(const request& asked) {
  if (asked.is_tree) return {false, true, false};
  const bool all = !asked.fields && !asked.classes && !asked.tables;
  return {all || asked.fields, all || asked.classes, all || asked.tables};
}

static bool begin_past(const request& asked, reading& from, dm::past& past, dm::problem& why) {
  int64_t record = 0;
  return begin_past(asked.database, from, why) && find_point_of(from, asked.at, record, why) &&
         look_back_to(from, record, past, why);
}

static int run(const request& asked) {
  dm::problem why;
  if (asked.is_tree && (asked.fields || asked.tables)) {
    why.sentence = "A tree (--tree) has classes alone.";
    return fail(why);
  }
  reading from;
  listing found = kinds_of(asked);
  dm::past past;
  const bool is_past = !asked.at.empty();
  if (!(is_past ? begin_past(asked, from, past, why) : begin_reading(asked.database, from, why)) ||
      !find_listed({from, is_past ? &past : nullptr}, asked.pattern, asked.is_tree, found, why)) {
    return fail(why);
  }
  if (asked.is_json) {
    print_json(found, asked.is_tree);
  } else {
    asked.is_tree ? print_tree(found) : print_text(found);
  }
  return DONE;
}

void add_list(CLI::App& app, int& result) {
  const auto asked = std::make_shared<request>();
  auto* command = app.add_subcommand("list", "List fields, classes and tables");
  command->add_option("pattern", asked->pattern,
                      "Only those with such names: * stands for any text, ? for any character");
  command->add_flag("--fields", asked->fields, "Only fields");
  command->add_flag("--classes", asked->classes, "Only classes");
  command->add_flag("--tables", asked->tables, "Only tables");
  command->add_flag("--tree", asked->is_tree, "Classes as a tree");
  add_json_option(*command, asked->is_json);
  add_database_option(*command, asked->database);
  add_at_option(*command, asked->at);
  command->callback([asked, &result] { result = run(*asked); });
}

}  // namespace dict
