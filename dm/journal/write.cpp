#include "dm/journal/write.h"

#include "dd/database_number.h"
#include "dm/journal/who.h"

namespace dm {

// A part is written when it is so large: a row for each change would take several times as long.
static constexpr size_t FULL_PART = 64 * 1024;

void find_out_who() {
  journal_record record;
  fill_who(record);
}

// Links the record to the last one.
static bool begin_record(store& store, journal_draft& draft, problem& why) {
  if (draft.record.number != 0) return true;
  journal_head end;
  if (!store.calls->journal_end(&store, end, why)) return false;
  if (end.number < 0 || end.number >= HIGHEST_ROW_ID) {
    why.code = TAV_ERR_STORAGE;
    why.is_damage = true;
    why.sentence = "The number of the journal's last record is damaged; see 'tav_dict check'.";
    return false;
  }
  draft.record.number = end.number + 1;
  draft.record.previous = end.hash;
  draft.record.role = end.role;
  return true;
}

static bool write_part(store& store, journal_draft& draft, problem& why) {
  if (draft.packed.empty()) return true;
  draft.content.add(draft.packed);
  const journal_part part{draft.record.number, draft.parts++, draft.packed.c_str()};
  if (!store.calls->add_part(&store, part, why)) return false;
  draft.packed.clear();
  return true;
}

static bool count_change(store& store, journal_draft& draft, problem& why) {
  ++draft.record.changes;
  return begin_record(store, draft, why) &&
         (draft.packed.size() < FULL_PART || write_part(store, draft, why));
}

bool note_change(store& store, journal_draft& draft, change_of what, std::string_view name,
                 const journal_states& states, problem& why) {
  return !pack_change(draft.packed, what, name, states) || count_change(store, draft, why);
}

bool note_found(store& store, journal_draft& draft, change_of what, std::string_view name,
                std::string_view state, problem& why) {
  pack_found(draft.packed, what, name, state);
  return count_change(store, draft, why);
}

static void fill(journal_record& record, const journal_run& run, const journal_subject& subject) {
  fill_who(record);
  record.run = run.id;
  record.deployment = run.deployment != 0 ? run.deployment : record.number;
  record.time = time_now();
  record.kind = subject.kind;
  record.detail = subject.detail;
  if (subject.database != 0) record.database = dd_database_text(subject.database);
  if (subject.login != 0) record.login = dd_database_text(subject.login);
}

static bool write_record(store& store, journal_draft& draft, const journal_run& run,
                         const journal_subject& subject, problem& why) {
  if (!begin_record(store, draft, why) || !write_part(store, draft, why)) return false;
  journal_record& record = draft.record;
  fill(record, run, subject);
  record.hash = hash_of_record(record, draft.content.hex());
  return store.calls->add_record(&store, record, why);
}

bool finish_record(store& store, journal_draft& draft, const journal_run& run,
                   const journal_subject& subject, problem& why) {
  return draft.record.changes == 0 || write_record(store, draft, run, subject, why);
}

bool add_event(store& store, journal_draft& draft, journal_run& run, const journal_subject& subject,
               problem& why) {
  if (!write_record(store, draft, run, subject, why)) return false;
  run.deployment = draft.record.deployment;
  return true;
}

}  // namespace dm
