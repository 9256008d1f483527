#include "dm/changes/changes.h"

#include <algorithm>

#include "dd/database_number.h"
#include "dm/changes/plan.h"
#include "dm/journal/read.h"
#include "dm/journal/write.h"
#include "dm/session.h"
#include "vantor/binding.h"

namespace dm {

// --- Whether it may be written -------------------------------------------------------------------

bool may_change(const settings& settings, change_of what, problem& why) {
  const bool is_field = what == change_of::FIELD;
  if (is_field ? settings.fields_writeable : settings.objects_writeable) return true;
  why.code = TAV_ERR_WRITE_REFUSED;
  why.sentence = writes_refused(is_field ? "fields_writeable" : "objects_writeable");
  return false;
}

static bool is_allowed(const settings& settings, std::span<const wanted_thing> wanted,
                       problem& why) {
  return std::ranges::all_of(
      wanted, [&](const wanted_thing& thing) { return may_change(settings, thing.what, why); });
}

bool begin_change(store& store, bool is_trial, bool& writes, problem& why) {
  store.calls->rollback(&store);
  if (store.calls->writeable(&store)) find_out_who();
  writes = store.calls->begin(&store, true, why);
  if (writes || !is_trial || why.code != TAV_ERR_WRITE_REFUSED) return writes;
  why = {};
  return store.calls->begin(&store, false, why);
}

// --- Whether it is still as it was seen ----------------------------------------------------------

std::string told_by(const journal_record& record) {
  return join({"by deployment ", std::to_string(record.deployment), " of ", record.time, " by ",
               record.os_user, "@", record.os_host});
}

std::string told_thing(change_of what, std::string_view name) {
  return join({what == change_of::FIELD ? "Field " : "Class ", quoted(name)});
}

bool is_seen_to_the_end(store& store, uint64_t database, int64_t end, change_result& result) {
  if (end == change_purpose::ANY) return true;
  const std::string about = dd_database_text(database);
  journal_record later;
  const auto look = [&](const journal_record& record) {
    if (record.database != about) return true;
    return later = record, false;
  };
  if (!walk_records(store, {end + 1}, look, result.failure)) return false;
  if (later.number == 0) return true;
  const problem conflict{
      TAV_ERR_CONFLICT, 0, 0, 0,
      join({"The dictionary was changed ", told_by(later), " since it was looked at; run again."})};
  result.refused.push_back({conflict, change_of::FIELD, "", later});
  return false;
}

// --- All of it -----------------------------------------------------------------------------------

static bool change_all(store& store, const settings& settings, uint64_t database,
                       std::span<const wanted_thing> wanted, const change_purpose& purpose,
                       change_result& result) {
  change_plan plan;
  bool writes = false;
  problem& why = result.failure;
  if (!is_allowed(settings, wanted, why) || !begin_change(store, purpose.is_trial, writes, why) ||
      !find_database(store, database, 1, plan.database, why) ||
      !is_seen_to_the_end(store, database, purpose.seen_end, result) ||
      !make_plan(store, wanted, plan, result) || !is_fine(result)) {
    return false;
  }
  if (!judge(store, plan, result) || !is_fine(result)) return false;
  if (plan.is_empty()) return true;
  if (!writes) return result.changes = plan.size(), true;
  return write_plan(store, settings, plan, purpose.detail, result) &&
         (purpose.is_trial || store.calls->commit(&store, why));
}

bool change_things(store& store, const settings& settings, uint64_t database,
                   std::span<const wanted_thing> wanted, const change_purpose& purpose,
                   change_result& result) try {
  result = {};
  const bool done = change_all(store, settings, database, wanted, purpose, result);
  store.calls->rollback(&store);
  return done;
} catch (...) {  // a part may be written
  store.calls->rollback(&store);
  throw;
}

}  // namespace dm
