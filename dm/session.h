// One session with a dictionary: its transactions, and what it has seen and tried.
//
// The first 576 attempted in a session is provisional: what it would write is kept in `pending`,
// with the dictionary held against other writers, until the next operation tells whether it was
// a trial (nothing is ever written) or real (it is made durable first). A user who may not write
// the store tries on a snapshot, which holds nobody; what would make that real is refused.
#ifndef DM_SESSION_H
#define DM_SESSION_H

#include <map>
#include <vector>

#include "dd/owners.h"
#include "dm/open.h"
#include "dm/ops/field_request.h"
#include "vantor/binding.h"

namespace dm {

// What a 576 would write.
struct field_plan {
  dd_flist request;     // a copy of the input, which lives as long as the plan
  uint64_t target = 0;  // database number
  database_row database{};
  field_request asked;  // empty when it was refused
};

// What a session has fetched and written in one database.
struct seen_database {
  static constexpr int64_t NEVER = -1;
  int64_t fields = NEVER;    // counter at the last fetch of all fields
  int64_t classes = NEVER;   // the same of all classes
  std::vector<int64_t> own;  // stamps of the session's own writes
};

enum class trial_state {
  NONE_YET,   // no 576 was attempted
  UNDECIDED,  // the first 576 was, and nothing since
  TRIED,      // it was a trial: a 578 with the trial flag followed
  OVER        // every operation is an ordinary one
};

struct session {
  dm::settings settings;
  store_owner store;
  trial_state trial = trial_state::NONE_YET;
  field_plan pending;
  problem refusal{};         // why the pending 576 cannot become real; code 0 when it can
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
// The same for what may turn out to be a trial: where this user may not write the store, one
// snapshot takes the place of the lock, and the refusal is kept.
bool begin_trial(session& session, problem& why);
// Makes durable what was written since.
bool commit_write(session& session, problem& why);
// Undoes it.
void undo_write(session& session);

// The database that an operation's list names; its counter has room for so many writes.
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

// Decides what the provisional 576 was, now that this operation follows. False when it was real and
// cannot be made durable. `done`: the operation was the trial's last and is carried out thereby.
bool settle_trial(session& session, uint32_t opcode, uint32_t flags, const tav_node* input,
                  bool& done, problem& why);
// The same for the end of the session.
bool settle_at_end(session& session, problem& why);

}  // namespace dm

#endif
