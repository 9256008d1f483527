// The provisional 576 of a session: what it would write, and what decides whether that is real.
//
// The first 576 attempted in a session is provisional: what it would write is kept in `pending`,
// with the dictionary held against other writers, until the next operation tells whether it was
// a trial (nothing is ever written) or real (it is made durable first). A user who may not write
// the store tries on a snapshot, which holds nobody; what would make that real is refused.
#ifndef DM_TRIAL_H
#define DM_TRIAL_H

#include "dm/ops/field_plan.h"

namespace dm {

struct session;

enum class trial_state {
  NONE_YET,   // no 576 was attempted
  UNDECIDED,  // the first 576 was, and nothing since
  TRIED,      // it was a trial: a 578 with the trial flag followed
  OVER        // every operation is an ordinary one
};

struct trial {
  trial_state state = trial_state::NONE_YET;
  field_plan pending;
  problem refusal{};  // why the pending 576 cannot become real; code 0 when it can
};

// Whether the 576 that is attempted now is the provisional one: the session's first. If so the
// session is undecided from now on, whatever comes of it.
bool opens_trial(session& session);

// As begin_write, for what may turn out to be a trial: where this user may not write the store, one
// snapshot takes the place of the lock, and the refusal is kept.
bool begin_trial(session& session, problem& why);

// Decides what the provisional 576 was, now that this operation follows. False when it was real and
// cannot be made durable. `done`: the operation was the trial's last and is carried out thereby.
bool settle_trial(session& session, uint32_t opcode, uint32_t flags, const tav_node* input,
                  bool& done, problem& why);
// The same for the end of the session.
bool settle_at_end(session& session, problem& why);

// Ends what an operation left open: nothing may stay so but the provisional 576's transaction.
void clean_up(session& session);

}  // namespace dm

#endif
