#include "dm/session.h"

#include <algorithm>
#include <new>

#include "dd/database_number.h"
#include "vantor/binding.h"

namespace dm {

bool begin_read(session& session, problem& why) {
  if (session.is_reading || session.is_writing) return true;
  session.is_reading = session.store->calls->begin(session.store.get(), false, why);
  return session.is_reading;
}

void end_read(session& session) {
  if (!session.is_reading || !session.has_written) return;
  session.store->calls->rollback(session.store.get());
  session.is_reading = false;
}

void end_snapshot(session& session) {
  session.has_written = true;
  end_read(session);
}

bool begin_write(session& session, problem& why) {
  if (session.is_writing) return true;
  end_snapshot(session);
  if (session.store->calls->writeable(session.store.get())) find_out_who();
  session.is_writing = session.store->calls->begin(session.store.get(), true, why);
  return session.is_writing;
}

bool note_change(session& session, change_of what, std::string_view name,
                 const journal_states& states, problem& why) {
  return note_change(*session.store, session.draft, what, name, states, why);
}

bool commit_write(session& session, const char* kind, uint64_t database, problem& why,
                  const std::string& detail) {
  if (session.is_held) return true;
  const uint64_t login = session.settings.has_login ? session.settings.database : 0;
  const journal_subject subject{kind, database, detail, login};
  if (!finish_record(*session.store, session.draft, session.run, subject, why)) return false;
  if (!session.store->calls->commit(session.store.get(), why)) return false;
  if (session.draft.record.changes > 0) session.run.deployment = session.draft.record.deployment;
  session.draft = {};
  session.is_writing = false;
  return true;
}

void undo_write(session& session) {
  if (!session.is_writing) return;
  session.store->calls->rollback(session.store.get());
  session.draft = {};
  session.is_writing = false;
}

uint64_t target_of(const tav_node* input) {
  return tav_poid_get_db(static_cast<const tav_poid_t*>(tav_node_get(input, TAV_FLD_POID)));
}

bool find_database(store& store, uint64_t wanted, int64_t writes, database_row& database,
                   problem& why) {
  bool is_there = false;
  auto look = [&](const database_row& row) {
    if (row.number == wanted) database = row, is_there = true;
    return !is_there;
  };
  if (!store.calls->databases(&store, visit<database_row>(look), why)) return false;
  if (is_there && has_room(database.counter, writes)) return true;
  if (is_there) return why = damaged_counter(wanted), false;
  why = {TAV_ERR_UNKNOWN_DATABASE, TAV_FLD_POID, 0, 0,
         join({"The dictionary holds no database ", dd_database_text(wanted),
               "; 'tav_dict add-database' adds one."})};
  return false;
}

bool find_database(session& session, const tav_node* input, int64_t writes, database_row& database,
                   problem& why) {
  if (tav_node_get(input, TAV_FLD_POID) == nullptr) {
    why = {TAV_ERR_MISSING_FIELD, TAV_FLD_POID, 0, 0, "The operation names no database."};
    return false;
  }
  return find_database(*session.store, target_of(input), writes, database, why);
}

bool is_foreign(const session& session, uint64_t database, int64_t seen_database::*fetched,
                int64_t stamp) {
  const auto found = session.seen.find(database);
  if (found == session.seen.end()) return false;
  const seen_database& seen = found->second;
  return seen.*fetched != seen_database::NEVER && stamp > seen.*fetched &&
         std::find(seen.own.begin(), seen.own.end(), stamp) == seen.own.end();
}

void note_own(session& session, uint64_t database, int64_t stamp) noexcept try {
  session.seen[database].own.push_back(stamp);
} catch (const std::bad_alloc&) {
}

}  // namespace dm
