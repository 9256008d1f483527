// The provisional 576: the first 576 of a session may be part of a trial, and only the operation
// after it tells.
//
// So it writes nothing at first. Its plan is kept in `pending`, with a write transaction open that
// shuts out other writers. If a 578 with the trial flag follows, or a 585 that deletes the very
// fields, it was a trial and is never written. If anything else follows, or the session ends, it is
// real: it is written and committed before that. A user who may not write the store gets a read
// snapshot in place of the write transaction; making that real is refused.
#ifndef DM_TRIAL_H
#define DM_TRIAL_H

#include "dm/ops/field_plan.h"

namespace dm {

struct session;

enum class trial_state {
  NONE_YET,   // no 576 was attempted
  UNDECIDED,  // the first 576 was, and no operation since
  TRIED,      // it was a trial: a 578 with the trial flag followed
  OVER        // every operation is an ordinary one
};

// A list of which a trial found that the dictionary holds all of it already.
struct held_list {
  dd_flist list;  // a copy: what it shares with the list that was tried cannot change any more
  uint64_t target = 0;               // database number
  int64_t counter = 0;               // of the database then
  std::vector<std::string> notes{};  // what carrying it out tells
};

struct trial {
  trial_state state = trial_state::NONE_YET;
  field_plan pending;
  held_list fields{};
  held_list classes{};
  problem refusal{};  // why the pending 576 cannot become real; code 0 when it can
};

// Whether the 576 that begins now is the provisional one: the session's first. If so, the state is
// UNDECIDED from now on, even if the 576 fails.
bool opens_trial(session& session);

// As begin_write, for what may turn out to be a trial: where this user may not write the store,
// begins a read snapshot instead and keeps the refusal.
bool begin_trial(session& session, problem& why);

// Decides, by the operation that follows, whether the provisional 576 was a trial. False where it
// was real and cannot be committed. `done`: the operation is a 585 that deletes just the fields of
// the trial; they were never written, so nothing is left to do.
bool settle_trial(session& session, uint32_t opcode, uint32_t flags, const tav_node* input,
                  bool& done, problem& why);
// The same for the end of the session.
bool settle_at_end(session& session, problem& why);

// Whether the list has the very elements that a trial found the database to hold, and nobody has
// written to the database since: then there is nothing to judge and nothing to write.
bool holds_all(const held_list& tried, const tav_node* list, uint32_t array,
               const database_row& database);

// Ends the transaction that an operation left open, unless it is the provisional 576's.
void clean_up(session& session);

}  // namespace dm

#endif
