// undo: takes back what a deployment changed.
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

// What takes renames back is a rename, too: the history follows the names.
static std::string detail_of_undo(const deployment& undone) {
  std::vector<told_rename> back;
  for (auto record = undone.records.rbegin(); record != undone.records.rend(); ++record) {
    dm::journal_record told;
    told.kind = record->kind;
    told.detail = record->detail;
    std::ranges::move(taken_back(read_renames(told)), std::back_inserter(back));
  }
  std::string detail = "{\"undo\":" + std::to_string(undone.number);
  return detail.append(renames_detail(back)).append("}");
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
  change.undone = wanted.number;
  return dm::find_undone(*from.store, from.database, wanted.number, change.wanted, change.refused,
                         why);
}

static int run_undo(const request& asked) {
  dm::problem why;
  intended_change change;
  if (!begin_change(change, why) || !find_undo(asked.point, change, why)) return fail(why);
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

}  // namespace dict
