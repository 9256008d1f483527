#include "dict/change/change.h"

namespace dict {

void add_change_options(CLI::App& command, change_options& how) {
  command.add_flag("--dry-run", how.is_trial, "Tell what would be done, and what is refused");
  command.add_flag("--yes", how.is_sure, "Do not ask");
  command.add_flag("--json", how.is_json, "Write JSON");
}

static bool note_end(intended_change& change, dm::problem& why) {
  dm::journal_head end;
  dm::store* store = change.from.store.get();
  if (!store->calls->journal_end(store, end, why)) return false;
  change.seen_end = end.number;
  return true;
}

bool begin_change(intended_change& change, dm::problem& why) {
  return begin_history(change.from, why) && note_end(change, why);
}

bool begin_change(const std::string& database, intended_change& change, dm::problem& why) {
  return begin_history(database, change.from, why) && note_end(change, why);
}

void refuse(intended_change& change, dm::change_of what, const std::string& name,
            std::string_view fault) {
  dm::problem why;
  why.sentence = dm::join({dm::told_thing(what, name), " ", fault, "."});
  change.refused.push_back({why, what, name, {}});
}

bool refuse_altered(intended_change& change, const dm::problem& why) {
  if (why.code != TAV_ERR_CONFLICT) return false;
  change.refused.push_back({why, dm::change_of::FIELD, "", {}});
  return true;
}

bool find_there(intended_change& change, dm::change_of what, const std::string& name,
                std::optional<std::string>& state, dm::problem& why) {
  dm::store& store = *change.from.store;
  if (!dm::present_state(store, change.from.database.id, what, name, state, why)) return false;
  if (!state) refuse(change, what, name, "does not exist");
  return true;
}

}  // namespace dict
