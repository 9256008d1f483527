// One session with a dictionary: its transactions, and what it has seen.
#ifndef DM_SESSION_H
#define DM_SESSION_H

#include <map>
#include <vector>

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

struct session {
  dm::settings settings;
  store_owner store;
  dm::trial trial;
  bool is_writing = false;   // a write transaction is open
  bool is_reading = false;   // a snapshot is open: of the fetches, or of a trial that cannot write
  bool has_written = false;  // from then on fetches see the dictionary as it is
  std::map<uint64_t, seen_database> seen;
};

// Begins to read: in the session's one snapshot up to its first write, afterwards in one of its
// own.
bool begin_read(session& session, problem& why);
// Ends what begin_read began, unless it is the session's snapshot.
void end_read(session& session);

// Leaves the snapshot: what is read from now on is the dictionary as it is.
void end_snapshot(session& session);

// Begins to write, alone in the dictionary (or goes on, where that has begun).
bool begin_write(session& session, problem& why);
// Makes durable what was written since.
bool commit_write(session& session, problem& why);
// Undoes it.
void undo_write(session& session);

// The database of that number; its counter has room for so many writes.
bool find_database(store& store, uint64_t wanted, int64_t writes, database_row& database,
                   problem& why);
// The same for the one that an operation's list names.
bool find_database(session& session, const tav_node* input, int64_t writes, database_row& database,
                   problem& why);
// The same number without looking: 0 when the list names none.
uint64_t target_of(const tav_node* input);

// Whether another session has written a row since this one fetched all of its kind.
bool is_foreign(const session& session, uint64_t database, int64_t seen_database::*fetched,
                int64_t stamp);
// Notes that the session has written with that stamp. Without memory for that its write will look
// like another's, which is refused.
void note_own(session& session, uint64_t database, int64_t stamp) noexcept;

}  // namespace dm

#endif
