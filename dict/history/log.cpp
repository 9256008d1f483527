// log: which deployments there were.
#include <iostream>
#include <memory>

#include "dd/database_number.h"
#include "dict/commands.h"
#include "dict/history/moments.h"
#include "dict/history/telling.h"
#include "dict/options.h"

namespace dict {

namespace {

struct request {
  deployment_choice wanted;
  std::string since;
  std::string database;
  bool is_json = false;
};

}  // namespace

static void put(json_writer& out, const deployment& one) {
  out.StartObject();
  put_deployment(out, one);
  out.EndObject();
}

static void print(const std::vector<deployment>& found, bool is_json) {
  if (!is_json) {
    for (const deployment& one : found) print_deployment(one);
    return;
  }
  json_page page;
  page.out.StartObject();
  put_array(page.out, "deployments", found, put);
  page.out.EndObject();
  dict::print(page);
}

static int run(request asked) {
  dm::problem why;
  reading from;
  std::vector<deployment> found;
  uint64_t number = 0;
  if (!asked.since.empty() && !read_moment(asked.since, asked.wanted.since, why)) return fail(why);
  if (!asked.database.empty()) {
    if (!read_database(asked.database, number, why)) return fail(why);
    asked.wanted.database = dd_database_text(number);
  }
  if (!begin_history(from, why) || !find_deployments(*from.store, asked.wanted, found, why)) {
    return fail(why);
  }
  print(found, asked.is_json);
  return DONE;
}

void add_log(CLI::App& app, int& result) {
  const auto asked = std::make_shared<request>();
  auto* command = app.add_subcommand("log", "Tell who deployed what and when, the newest first");
  command->add_option("--field", asked->wanted.field, "Only what changed this field");
  command->add_option("--class", asked->wanted.class_name, "Only what changed this class");
  command->add_option("--since", asked->since,
                      "Only from this time on: 2026-11-01, 2026-11-01T10:00, yesterday");
  command->add_option("--user", asked->wanted.user,
                      "Only by this user of the system, or this role of the server");
  command->add_option("--limit", asked->wanted.limit, "At most so many")
      ->check(CLI::PositiveNumber);
  command->add_option("-d,--database", asked->database, "Only this database, N.N.N.N");
  add_json_option(*command, asked->is_json);
  command->callback([asked, &result] { result = run(*asked); });
}

}  // namespace dict
