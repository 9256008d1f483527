// revert-to: the state after a deployment.
#include <algorithm>
#include <memory>

#include "dd/database_number.h"
#include "dict/change/change.h"
#include "dict/history/renames.h"
#include "dict/options.h"

namespace dict {

namespace {

struct request {
  std::string point;
  std::string database;
  change_options how;
};

}  // namespace

// Before the database was made there is nothing to go back to. Behind its end there is: what was in
// one that was deleted and made anew.
static bool is_within(const reading& from, int64_t record, dm::problem& why) {
  const std::string about = dd_database_text(from.database.number);
  int64_t made = 0;
  const auto look = [&](const dm::journal_record& row) {
    if (row.database != about) return true;
    const bool makes_it = row.kind == dm::journal_kind::ADD_DATABASE;
    if (makes_it) made = row.deployment;
    return !makes_it && row.kind != dm::journal_kind::DROP_DATABASE;
  };
  if (!dm::walk_records(*from.store, {record + 1}, look, why)) return false;
  if (made == 0) return true;
  why.sentence = dm::join(
      {"Database ", about, " was not there yet: deployment ", std::to_string(made), " made it."});
  return false;
}

// --- Renames since -------------------------------------------------------------------------------

static bool find_renames(const reading& from, int64_t record, std::vector<told_rename>& back,
                         dm::problem& why) {
  const std::string about = dd_database_text(from.database.number);
  const auto note = [&](const dm::journal_record& row) {
    if (row.database != about) return true;
    std::ranges::move(taken_back(read_renames(row)), std::back_inserter(back));
    return true;
  };
  const dm::journal_range newest_first{record + 1, std::numeric_limits<int64_t>::max(), true};
  return dm::walk_records(*from.store, newest_first, note, why);
}

// The beginning of a field's state: what is renamed keeps it.
static std::string_view number_of(std::string_view state) {
  return state.substr(0, state.find(' '));
}

// Whether what was renamed is there still and was there then. A name may have gone to another thing
// since.
static bool is_taken_back(const reading& from, const dm::past& then,
                          const std::vector<told_rename>& all, size_t at, bool& is_it,
                          dm::problem& why) {
  const auto here = all.begin() + static_cast<ptrdiff_t>(at);
  const bool is_field = here->what == "field";
  const auto what = is_field ? dm::change_of::FIELD : dm::change_of::CLASS;
  const std::string now = name_through(taken_back({all.begin(), here}), what, here->from);
  const std::string name = name_through({here + 1, all.end()}, what, here->to);
  const auto past = then.find(dm::thing_key(what, name));
  std::optional<std::string> state;
  is_it = false;
  if (past == then.end() || !past->second.state) return true;
  if (!dm::present_state(*from.store, from.database.id, what, now, state, why)) return false;
  is_it = state && (!is_field || number_of(*state) == number_of(*past->second.state));
  return true;
}

// The renames that going back to the record takes back, the newest first: the history follows them.
static bool find_taken_back(const reading& from, int64_t record, const dm::past& then,
                            std::vector<told_rename>& back, dm::problem& why) {
  std::vector<told_rename> all;
  if (!find_renames(from, record, all, why)) return false;
  for (size_t i = 0; i < all.size(); ++i) {
    bool is_it = false;
    if (!is_taken_back(from, then, all, i, is_it, why)) return false;
    if (is_it) back.push_back(all[i]);
  }
  return true;
}

// --- The command ---------------------------------------------------------------------------------

static bool find_revert(const std::string& point, intended_change& change, dm::problem& why) {
  int64_t record = 0;
  dm::past then;
  std::vector<told_rename> back;
  if (!find_point_of(change.from, point, record, why) || !is_within(change.from, record, why) ||
      !look_back_to(change.from, record, then, why) ||
      !find_taken_back(change.from, record, then, back, why)) {
    return false;
  }
  for (const auto& [key, thing] : then) {
    change.wanted.push_back({dm::change_of{key[0]}, thing.name, thing.state});
  }
  change.detail = "{\"revert-to\":" + std::to_string(record);
  change.detail.append(renames_detail(back)).append("}");
  return true;
}

static int run(const request& asked) {
  dm::problem why;
  intended_change change;
  if (!begin_change(asked.database, change, why)) return fail(why);
  if (!find_revert(asked.point, change, why) && !refuse_altered(change, why)) return fail(why);
  return carry_out(change, asked.how);
}

void add_revert_to(CLI::App& app, int& result) {
  const auto asked = std::make_shared<request>();
  auto* command = app.add_subcommand("revert-to", "Make a database what it was after a deployment");
  command->add_option("N", asked->point, "The deployment's number, its tag, or a time after '@'")
      ->required();
  add_change_options(*command, asked->how);
  add_database_option(*command, asked->database);
  command->callback([asked, &result] { result = run(*asked); });
}

}  // namespace dict
