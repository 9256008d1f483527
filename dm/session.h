// One session with a dictionary: its transactions, and what it has fetched and written.
#ifndef DM_SESSION_H
#define DM_SESSION_H

#include <functional>
#include <map>
#include <vector>

#include "dm/class_def.h"
#include "dm/journal/write.h"
#include "dm/settings.h"
#include "dm/store.h"
#include "dm/trial.h"

namespace dm {

// What a session has fetched and written in one database.
struct seen_database {
  static constexpr int64_t NEVER = -1;
  int64_t fields = NEVER;    // counter at the last fetch of all fields
  int64_t classes = NEVER;   // the same of all classes
  std::vector<int64_t> own;  // stamps of the session's own writes
};

// What a 578 makes of one class of its list; borrowed.
struct accepted_class {
  const class_def& definition;
  const std::string* before;  // as it was stored, or stands earlier in the list; null: new
  std::string_view after;     // as it would be stored
  const std::vector<std::string>& tables;  // that it has then
};

struct session {
  dm::settings settings;
  store_owner store;
  dm::trial trial;
  bool is_writing = false;   // a write transaction is open
  bool is_reading = false;   // a read transaction is open: of fetches, or of a trial's snapshot
  bool has_written = false;  // has ended its first snapshot; each fetch begins one of its own
  std::map<uint64_t, seen_database> seen;
  journal_run run{};      // to which the records of all its transactions belong
  journal_draft draft{};  // the record of the open write transaction
  bool is_held = false;   // several operations write one transaction: none of them commits it
  std::function<void(const accepted_class&)> watch{};  // may be empty; is told in trials, too
};

// Begins a read transaction, unless one is open. Up to the session's first write all fetches share
// one snapshot; afterwards each has its own.
bool begin_read(session& session, problem& why);
// Ends what begin_read began, unless it is the session's shared snapshot.
void end_read(session& session);

// Ends the shared snapshot for good: what is read from now on is the dictionary as it is then.
void end_snapshot(session& session);

// Ends the snapshot and begins a write transaction, which shuts out other writers. Does nothing
// where one is open.
bool begin_write(session& session, problem& why);
// Notes what the open write transaction changes (dm/journal/write.h), before it is written.
bool note_change(session& session, change_of what, std::string_view name,
                 const journal_states& states, problem& why);
// Commits the write transaction, and in it a record of that kind in the journal, if changes were
// noted; `detail` is that of the record. Where that fails, undo_write must follow. Does nothing
// while the transaction is held.
bool commit_write(session& session, const char* kind, uint64_t database, problem& why,
                  const std::string& detail = "");
// Rolls the write transaction back, if one is open.
void undo_write(session& session);

// The database of that number. Refuses an unknown one, and one whose counter has no room for so
// many writes.
bool find_database(store& store, uint64_t wanted, int64_t writes, database_row& database,
                   problem& why);
// The same for the one that an operation's input names.
bool find_database(session& session, const tav_node* input, int64_t writes, database_row& database,
                   problem& why);
// The number of that database, without looking it up; 0 where the input names none.
uint64_t target_of(const tav_node* input);

// Whether a row with that stamp was written by another session after this one last fetched all rows
// of its kind. False where it never fetched them.
bool is_foreign(const session& session, uint64_t database, int64_t seen_database::*fetched,
                int64_t stamp);
// Notes a stamp that the session has written. Where there is no memory for the note, its rows look
// like another session's later, and changing them is refused.
void note_own(session& session, uint64_t database, int64_t stamp) noexcept;

}  // namespace dm

#endif
