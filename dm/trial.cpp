#include "dm/trial.h"

#include "dd/fold.h"
#include "dm/session.h"

namespace dm {

bool opens_trial(session& session) {
  if (session.trial.state != trial_state::NONE_YET) return false;
  session.trial.state = trial_state::UNDECIDED;
  return true;
}

static bool is_open(const trial& trial) {
  return trial.state == trial_state::UNDECIDED || trial.state == trial_state::TRIED;
}

bool begin_trial(session& session, problem& why) {
  if (session.trial.refusal.code != TAV_ERR_NONE) return true;  // the snapshot is open
  if (begin_write(session, session.trial.refusal)) return true;
  if (session.trial.refusal.code == TAV_ERR_WRITE_REFUSED && begin_read(session, why)) return true;
  if (why.code == TAV_ERR_NONE) why = session.trial.refusal;
  session.trial.refusal = {};
  return false;
}

void clean_up(session& session) {
  if (is_open(session.trial)) return;
  undo_write(session);
  end_read(session);
  session.trial.refusal = {};
}

static void forget_pending(session& session) {
  undo_write(session);
  end_read(session);
  session.trial.pending = field_plan();
  session.trial.refusal = {};
  session.trial.state = trial_state::OVER;
}

// Writes and commits the plan. A user who may not write is refused now, unless the plan is empty:
// then the 576 itself was refused, and there is nothing to write.
static bool make_durable(session& session, problem& why) try {
  const bool is_refused =
      session.trial.refusal.code != TAV_ERR_NONE && !session.trial.pending.asked.fields.empty();
  if (is_refused) why = session.trial.refusal;
  const bool durable =
      !is_refused && (!session.is_writing || (write_fields(session, session.trial.pending, why) &&
                                              commit_write(session, journal_kind::FIELDS,
                                                           session.trial.pending.target, why)));
  forget_pending(session);
  return durable;
} catch (...) {  // a part may be written: roll it back
  forget_pending(session);
  throw;
}

static const char* name_of(const tav_node* field) {
  const void* name = tav_node_get(field, TAV_FLD_FIELD_NAME);
  return name != nullptr ? static_cast<const char*>(name) : "";
}

static int32_t number_of(const tav_node* field, uint32_t which) {
  const void* value = tav_node_get(field, which);
  return value != nullptr ? *static_cast<const int32_t*>(value) : 0;
}

static const tav_node* next_unmarked(const tav_node* list, uint32_t& position) {
  int32_t id = 0;
  const tav_node* field;
  do {
    field = tav_node_next(list, TAV_FLD_FIELD, &position, &id);
  } while (field != nullptr && number_of(field, TAV_FLD_FLAGS) == DD_FIELD_ON_SERVER);
  return field;
}

// Whether `unmarked` has the fields of `all` that are not marked as held by the dictionary already:
// same names, types and numbers in the same order.
static bool same_unmarked_fields(const tav_node* all, const tav_node* unmarked) {
  uint32_t position = 0;
  uint32_t other_position = 0;
  int32_t id = 0;
  for (;;) {
    const tav_node* field = next_unmarked(all, position);
    const tav_node* other = tav_node_next(unmarked, TAV_FLD_FIELD, &other_position, &id);
    if (field == nullptr || other == nullptr) return field == other;
    if (field == other) continue;  // the lists share it
    if (!dd_equal(name_of(field), name_of(other))) return false;
    for (const uint32_t which : {TAV_FLD_FIELD_TYPE, TAV_FLD_FIELD_NUM}) {
      if (number_of(field, which) != number_of(other, which)) return false;
    }
  }
}

bool holds_all(const held_list& tried, const tav_node* list, uint32_t array,
               const database_row& database) {
  if (tried.list == nullptr || tried.target != database.number || tried.counter != database.counter)
    return false;
  uint32_t position = 0;
  uint32_t tried_position = 0;
  int32_t id = 0;
  for (;;) {
    const tav_node* element = tav_node_next(list, array, &position, &id);
    const tav_node* other =
        tav_node_next(tav_node_of(tried.list.get()), array, &tried_position, &id);
    if (element != other) return false;
    if (element == nullptr) return true;
  }
}

// Whether a 585 names exactly the fields that the provisional 576 would have added.
static bool ends_trial(const session& session, uint32_t opcode, const tav_node* input) {
  if (session.trial.pending.request == nullptr) return false;  // there was no memory to copy it
  if (opcode != TCM_OP_SDK_DEL_FLD_SPECS || target_of(input) != session.trial.pending.target)
    return false;
  return same_unmarked_fields(tav_node_of(session.trial.pending.request.get()), input);
}

bool settle_trial(session& session, uint32_t opcode, uint32_t flags, const tav_node* input,
                  bool& done, problem& why) {
  done = false;
  if (!is_open(session.trial)) return true;
  const bool is_check = opcode == TCM_OP_SDK_SET_OBJ_SPECS && (flags & TCM_OPFLG_TRIAL) != 0;
  if (session.trial.state == trial_state::UNDECIDED && is_check) {
    session.trial.state = trial_state::TRIED;
    return true;
  }
  done = ends_trial(session, opcode, input);
  if (session.trial.state == trial_state::UNDECIDED && !done) return make_durable(session, why);
  forget_pending(session);
  return true;
}

bool settle_at_end(session& session, problem& why) {
  if (session.trial.state == trial_state::UNDECIDED) return make_durable(session, why);
  forget_pending(session);
  return true;
}

}  // namespace dm
