#include "dm/changes/drop_database.h"

#include <charconv>

#include "dd/database_number.h"
#include "dm/changes/plan.h"
#include "dm/journal/read.h"
#include "dm/journal/write.h"
#include "dm/session.h"

namespace dm {

static constexpr std::string_view DETAIL = "{\"counter\":";

static bool has_others(store& store, uint64_t number, change_result& result) {
  int64_t others = 0;
  auto count = [&](const database_row& row) { return others += row.number != number, true; };
  if (!store.calls->databases(&store, visit<database_row>(count), result.failure)) return false;
  if (others > 0) return true;
  problem why;
  why.code = TAV_ERR_IN_USE;
  why.sentence = join({"Database ", dd_database_text(number),
                       " is the only one of the dictionary and cannot be deleted."});
  refuse(result, change_of::FIELD, "", std::move(why));
  return false;
}

// --- Noting what is there ------------------------------------------------------------------------

static bool note_gone(store& store, journal_draft& draft, change_of what, const char* name,
                      std::string_view state, problem& why) {
  return note_change(store, draft, what, name, {&state, nullptr}, why);
}

static bool note_all(store& store, int64_t database, journal_draft& draft, problem& why) {
  bool noted = true;
  auto field = [&](const field_row& row) {
    return noted = note_gone(store, draft, change_of::FIELD, row.name, field_state(row), why);
  };
  auto one = [&](const class_row& row) {
    return noted = note_gone(store, draft, change_of::CLASS, row.name, row.definition, why);
  };
  return store.calls->fields(&store, database, {}, visit<field_row>(field), why) && noted &&
         store.calls->classes(&store, database, {}, visit<class_row>(one), why) && noted;
}

// --- All of it -----------------------------------------------------------------------------------

static bool write_drop(store& store, const settings& settings, const database_row& database,
                       change_result& result) {
  journal_draft draft;
  journal_run run;
  problem& why = result.failure;
  const std::string detail = join({DETAIL, std::to_string(database.counter), "}"});
  const uint64_t login = settings.has_login ? settings.database : 0;
  const journal_subject subject{journal_kind::DROP_DATABASE, database.number, detail, login};
  if (!note_all(store, database.id, draft, why) ||
      !store.calls->delete_database(&store, database.id, why) ||
      !add_event(store, draft, run, subject, why)) {
    return false;
  }
  result.record = draft.record.number;
  result.changes = draft.record.changes;
  return true;
}

static bool drop_it(store& store, const settings& settings, uint64_t number,
                    const change_purpose& purpose, change_result& result) {
  database_row database{};
  bool writes = false;
  problem& why = result.failure;
  if (!may_change(settings, change_of::FIELD, why) ||
      !may_change(settings, change_of::CLASS, why) ||
      !begin_change(store, purpose.is_trial, writes, why) ||
      !find_database(store, number, 0, database, why) || !has_others(store, number, result) ||
      !is_seen_to_the_end(store, number, purpose.seen_end, result)) {
    return false;
  }
  if (!writes) return result.changes = 1, true;
  return write_drop(store, settings, database, result) &&
         (purpose.is_trial || store.calls->commit(&store, why));
}

bool drop_database(store& store, const settings& settings, uint64_t number,
                   const change_purpose& purpose, change_result& result) try {
  result = {};
  const bool done = drop_it(store, settings, number, purpose, result);
  store.calls->rollback(&store);
  return done;
} catch (...) {  // a part may be written
  store.calls->rollback(&store);
  throw;
}

bool last_counter(store& store, uint64_t number, int64_t& counter, problem& why) {
  const std::string about = dd_database_text(number);
  counter = 0;
  const auto look = [&](const journal_record& record) {
    if (record.kind != journal_kind::DROP_DATABASE || record.database != about) return true;
    const std::string& detail = record.detail;
    const size_t start = std::min(DETAIL.size(), detail.size());
    std::from_chars(detail.data() + start, detail.data() + detail.size(), counter);
    return false;
  };
  journal_range range;
  range.newest_first = true;
  return walk_records(store, range, look, why);
}

}  // namespace dm
