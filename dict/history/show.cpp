// show: what a deployment changed.
#include <iostream>
#include <memory>

#include "dict/commands.h"
#include "dict/diff/json.h"
#include "dict/history/changes.h"
#include "dict/history/telling.h"
#include "dict/options.h"
#include "dict/terminal/colour.h"
#include "dict/terminal/visible.h"

namespace dict {

namespace {

struct request {
  std::string point;
  bool is_json = false;
  std::string colour = "auto";
};

}  // namespace

static void print_text(const deployment& one, const std::vector<database_changes>& changes,
                       bool is_coloured) {
  print_deployment(one);
  print_call(one);
  for (const database_changes& each : changes) {
    if (changes.size() > 1) std::cout << "database " << each.database << '\n';
    std::cout << as_text(each.found, {}, is_coloured);
  }
}

static void put(json_writer& out, const database_changes& each) {
  out.StartObject();
  put_member(out, "database", each.database);
  put_differences(out, each.found);
  out.EndObject();
}

static void print_json(const deployment& one, const std::vector<database_changes>& changes) {
  json_page page;
  page.out.StartObject();
  put_deployment(page.out, one);
  put_array(page.out, "changes", changes, put);
  page.out.EndObject();
  print(page);
}

static int run(const request& asked) {
  dm::problem why;
  reading from;
  deployment_choice wanted;
  deployment found;
  std::vector<database_changes> changes;
  const auto keep = [&](const deployment& one) { return found = one, false; };
  if (!begin_history(from, why) || !find_deployment(*from.store, asked.point, wanted.number, why) ||
      !walk_deployments(*from.store, wanted, keep, why) ||
      !find_changes(from, found, changes, why)) {
    return fail(why);
  }
  if (asked.is_json) {
    print_json(found, changes);
  } else {
    print_text(found, changes, is_coloured(asked.colour));
  }
  return DONE;
}

void add_show(CLI::App& app, int& result) {
  const auto asked = std::make_shared<request>();
  auto* command = app.add_subcommand("show", "Tell what a deployment changed");
  command->add_option("N", asked->point, "The deployment's number, its tag, or a time after '@'")
      ->required();
  add_json_option(*command, asked->is_json);
  add_colour_option(*command, asked->colour);
  command->callback([asked, &result] { result = run(*asked); });
}

}  // namespace dict
