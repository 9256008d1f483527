// The changes that are wanted, beside what the dictionary holds.
#ifndef DM_CHANGES_PLAN_H
#define DM_CHANGES_PLAN_H

#include <map>

#include "dm/changes/changes.h"

namespace dm {

// States, and rows that borrow from copies of them; none: the thing is not there.
struct planned_field {
  std::string name{};
  std::optional<std::string> before{}, after{};
  std::string before_text{}, after_text{};
  field_row old{}, row{};
};

struct planned_class {
  static constexpr int64_t NEW = -2;  // the first id of those that are not stored; then lower ones
  std::string name{}, stored_name{};
  int64_t id = 0;
  std::optional<std::string> before{}, after{};
  std::vector<std::string> old_tables{}, tables{};
};

// By folded names. What is to stay as it is, is left out.
struct change_plan {
  database_row database{};
  std::map<std::string, planned_field> fields{};
  std::map<std::string, planned_class> classes{};

  bool is_empty() const { return fields.empty() && classes.empty(); }
  int64_t size() const { return static_cast<int64_t>(fields.size() + classes.size()); }
};

// Whether tav.conf allows to write fields, or classes.
bool may_change(const settings& settings, change_of what, problem& why);

// Begins a write transaction; for a trial of a user who may not write, a snapshot.
bool begin_change(store& store, bool is_trial, bool& writes, problem& why);

// Refuses where the database has a record behind the one that the caller saw last. False when the
// store fails, and where it refuses.
bool is_seen_to_the_end(store& store, uint64_t database, int64_t end, change_result& result);

inline bool is_fine(const change_result& result) {
  return result.refused.empty() && !failed(result.failure);
}

// Adds a refusal that concerns the thing.
void refuse(change_result& result, change_of what, std::string_view name, problem why,
            const std::string& user = "");

// Fills the plan, whose database is known. States that are none are refused. False when the store
// fails.
bool make_plan(store& store, std::span<const wanted_thing> wanted, change_plan& plan,
               change_result& result);

// Refuses what breaks a rule in the dictionary as the plan would leave it. False when the store
// fails.
bool judge(store& store, const change_plan& plan, change_result& result);

// Writes the plan and its record into the open transaction.
bool write_plan(store& store, const settings& settings, const change_plan& plan,
                const std::string& detail, change_result& result);

}  // namespace dm

#endif
