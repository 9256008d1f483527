// undo: takes back what a deployment changed. revert-to: the state after one.
#include <algorithm>
#include <memory>

#include "dd/database_number.h"
#include "dict/change/change.h"
#include "dict/history/renames.h"
#include "dict/options.h"
#include "dm/changes/back.h"
#include "dm/session.h"

namespace dict {

namespace {

struct request {
  std::string point;
  std::string database;
  change_options how;
};

}  // namespace

// The one database that the deployment changed; false where there is none, or more than one.
static bool find_changed(const deployment& one, uint64_t& number, dm::problem& why) {
  for (const deployment_record& record : one.records) {
    if (dm::is_deployment(record.kind)) continue;
    why.sentence = dm::join({"Deployment ", std::to_string(one.number), " (", record.kind,
                             ") cannot be undone: only what changed fields or classes can."});
    return false;
  }
  const std::string& database = one.records.front().database;
  const bool is_one = std::ranges::all_of(
      one.records, [&](const deployment_record& r) { return r.database == database; });
  if (!is_one) {
    why.sentence = dm::join({"Deployment ", std::to_string(one.number),
                             " changed several databases; 'revert-to' takes them one by one."});
    return false;
  }
  return dd_read_database(database.c_str(), number) || dm::damaged_record(one.number, why);
}

// What takes a rename back is a rename, too: the history follows the name.
static std::string detail_of_undo(const deployment& undone) {
  const std::string detail = "{\"undo\":" + std::to_string(undone.number);
  for (const deployment_record& record : undone.records) {
    dm::journal_record told;
    told.kind = record.kind;
    told.detail = record.detail;
    const told_rename rename = read_rename(told);
    if (rename.what.empty()) continue;
    return detail + "," +
           detail_of({{"rename", rename.what}, {"from", rename.to}, {"to", rename.from}}).substr(1);
  }
  return detail + "}";
}

static bool find_undo(const std::string& point, intended_change& change, dm::problem& why) {
  deployment_choice wanted;
  std::vector<deployment> found;
  uint64_t database = 0;
  reading& from = change.from;
  if (!find_deployment(*from.store, point, wanted.number, why) ||
      !find_deployments(*from.store, wanted, found, why) ||
      !find_changed(found.at(0), database, why) ||
      !dm::find_database(*from.store, database, 0, from.database, why)) {
    return false;
  }
  change.detail = detail_of_undo(found.at(0));
  return dm::find_undone(*from.store, from.database, wanted.number, change.wanted, change.refused,
                         why);
}

static int run_undo(const request& asked) {
  dm::problem why;
  intended_change change;
  if (!begin_change(change, why) || !find_undo(asked.point, change, why)) return fail(why);
  return carry_out(change, asked.how);
}

// Before the database was made there is nothing to go back to.
static bool is_within(const reading& from, int64_t record, dm::problem& why) {
  const std::string about = dd_database_text(from.database.number);
  int64_t made = 0;
  const auto look = [&](const dm::journal_record& row) {
    const bool makes_it = row.kind == dm::journal_kind::INIT ||
                          (row.kind == dm::journal_kind::ADD_DATABASE && row.database == about);
    if (makes_it) made = row.deployment;
    return true;
  };
  if (!dm::walk_records(*from.store, {record + 1}, look, why)) return false;
  if (made == 0) return true;
  why.sentence = dm::join(
      {"Database ", about, " was not there yet: deployment ", std::to_string(made), " made it."});
  return false;
}

static bool find_revert(const std::string& point, intended_change& change, dm::problem& why) {
  int64_t record = 0;
  dm::past then;
  if (!find_point(*change.from.store, point, record, why) || !is_within(change.from, record, why) ||
      !look_back_to(change.from, record, then, why)) {
    return false;
  }
  for (const auto& [key, thing] : then) {
    change.wanted.push_back({dm::change_of{key[0]}, thing.name, thing.state});
  }
  change.detail = "{\"revert-to\":" + std::to_string(record) + "}";
  return true;
}

static int run_revert(const request& asked) {
  dm::problem why;
  intended_change change;
  if (!begin_change(asked.database, change, why) || !find_revert(asked.point, change, why)) {
    return fail(why);
  }
  return carry_out(change, asked.how);
}

void add_undo(CLI::App& app, int& result) {
  const auto asked = std::make_shared<request>();
  auto* command = app.add_subcommand("undo", "Take back what a deployment changed");
  command->add_option("N", asked->point, "The deployment's number, its tag, or a time after '@'")
      ->required();
  add_change_options(*command, asked->how);
  command->callback([asked, &result] { result = run_undo(*asked); });
}

void add_revert_to(CLI::App& app, int& result) {
  const auto asked = std::make_shared<request>();
  auto* command = app.add_subcommand("revert-to", "Make a database what it was after a deployment");
  command->add_option("N", asked->point, "The deployment's number, its tag, or a time after '@'")
      ->required();
  add_change_options(*command, asked->how);
  add_database_option(*command, asked->database);
  command->callback([asked, &result] { result = run_revert(*asked); });
}

}  // namespace dict
