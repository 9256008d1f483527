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

// Prints each deployment as it is found. What reads them may have ended meanwhile: then no more.
static bool print_texts(dm::store& store, const deployment_choice& wanted, dm::problem& why) {
  const auto print = [](const deployment& one) {
    print_deployment(one);
    return std::cout.good();
  };
  return walk_deployments(store, wanted, print, why);
}

static bool print_json(dm::store& store, const deployment_choice& wanted, dm::problem& why) {
  json_page page;
  page.out.StartObject();
  page.out.Key("deployments");
  page.out.StartArray();
  const auto put = [&](const deployment& one) {
    page.out.StartObject();
    put_deployment(page.out, one);
    page.out.EndObject();
    print_so_far(page);
    return std::cout.good();
  };
  if (!walk_deployments(store, wanted, put, why)) return false;
  page.out.EndArray();
  page.out.EndObject();
  print(page);
  return true;
}

static int run(request asked) {
  dm::problem why;
  reading from;
  uint64_t number = 0;
  if (!asked.since.empty() && !read_moment(asked.since, asked.wanted.since, why)) return fail(why);
  if (!asked.database.empty()) {
    if (!read_database(asked.database, number, why)) return fail(why);
    asked.wanted.database = dd_database_text(number);
  }
  if (!begin_history(from, why)) return fail(why);
  const auto print = asked.is_json ? print_json : print_texts;
  return print(*from.store, asked.wanted, why) ? DONE : fail(why);
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
