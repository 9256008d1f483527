// 576: adds fields and changes descriptions of stored ones, all or nothing.
#include "dm/field_request.h"
#include "dm/ops/dropped.h"
#include "dm/ops/operations.h"
#include "dm/rules/field.h"

namespace dm {

static bool bad(problem& why, const asked_field& field, int32_t code, uint32_t which,
                std::string_view fault) {
  blame_field(field.name, code, which, fault, why);
  why.rec_id = field.elem_id;
  return false;
}

// Whether the field has the type and number of the field that has its name already.
static bool is_the_same(const asked_field& field, int32_t type, int32_t number, problem& why) {
  if (*field.type != type) {
    const char* keyword = dd_type_keyword(type);
    return bad(
        why, field, TAV_ERR_CONFLICT, TAV_FLD_FIELD_TYPE,
        join({"has another type in the dictionary: ", keyword != nullptr ? keyword : "none"}));
  }
  return *field.number == number ||
         bad(why, field, TAV_ERR_CONFLICT, TAV_FLD_FIELD_NUM,
             join({"has another number in the dictionary: ", std::to_string(number)}));
}

static bool number_is_free(field_request& request, const asked_field& field, problem& why) {
  const asked_field& holder = field_at(request, field.first_numbered);
  const bool taken = &holder == &field ? field.number_is_taken : !dd_equal(holder.name, field.name);
  return !taken || bad(why, field, TAV_ERR_CONFLICT, TAV_FLD_FIELD_NUM,
                       join({"cannot have the number ", std::to_string(*field.number),
                             ": another field has it"}));
}

// Whether the field agrees with the dictionary and with the fields before it in the list. The last
// description of a name counts.
static bool is_acceptable(field_request& request, asked_field& field, problem& why) {
  if (!field.is_well_formed) {
    is_well_formed(field, why);
    why.rec_id = field.elem_id;
    return false;
  }
  asked_field& first = field_at(request, field.first_named);
  if (&first == &field) {
    const stored_field* stored = stored_of(request, field);
    return stored != nullptr ? is_the_same(field, stored->type, stored->number, why)
                             : number_is_free(request, field, why);
  }
  if (!is_the_same(field, *first.type, *first.number, why)) return false;
  if (field.descr != nullptr && *field.descr != '\0') {
    first.descr = field.descr;
    if (stored_field* stored = stored_of(request, first)) stored->is_described_so = false;
  }
  return true;
}

// Plans to add or describe the field. Only the first field of each name is planned.
static bool plan_field(const session& session, field_plan& plan, const key_set& dropped,
                       asked_field& field, problem& why) {
  if (&field_at(plan.asked, field.first_named) != &field) return true;
  const stored_field* stored = stored_of(plan.asked, field);
  const bool is_stored = stored != nullptr;
  const bool describes = field.descr != nullptr && *field.descr != '\0';
  if (is_stored && (!describes || stored->is_described_so)) return true;
  if (is_stored && is_foreign(session, plan.target, &seen_database::fields, stored->stamp)) {
    return bad(why, field, TAV_ERR_CONFLICT, TAV_FLD_FIELD_NAME,
               "was changed by another session since this one fetched the fields; run again");
  }
  if (!is_stored && was_dropped(dropped, change_of::FIELD, field.name)) {
    return bad(why, field, TAV_ERR_CONFLICT, TAV_FLD_FIELD_NAME, WAS_DROPPED);
  }
  return field.is_planned = true;
}

static bool plan_fields(session& session, field_plan& plan, problem& why) {
  const tav_node* input = tav_node_of(plan.request.get());
  if (!find_database(session, input, WRITES_OF_A_DEPLOYMENT, plan.database, why)) return false;
  if (holds_all(session.trial.fields, input, TAV_FLD_FIELD, plan.database)) return true;
  field_request& asked = plan.asked;
  read_request(input, asked);
  if (!look_up(*session.store, plan.database.id, asked, why)) return false;
  for (asked_field& field : asked.fields) {
    if (!is_acceptable(asked, field, why)) return false;
  }
  key_set dropped;
  if (!find_dropped(session, plan.database, &seen_database::fields, dropped, why)) return false;
  for (asked_field& field : asked.fields) {
    if (!plan_field(session, plan, dropped, field, why)) return false;
  }
  return true;
}

// Begins the transaction and fills the plan; on failure the plan is empty. Only a provisional plan
// can be made without the right to write.
static bool make_plan(operation& op, field_plan& plan) try {
  const bool is_pending = &plan == &op.session.trial.pending;
  if (!(is_pending ? begin_trial : begin_write)(op.session, op.why)) return false;
  if (plan_fields(op.session, plan, op.why)) return true;
  plan.asked = {};
  return false;
} catch (...) {
  plan.asked = {};
  throw;
}

dd_flist set_fields(operation& op) {
  const bool is_first = opens_trial(op.session);
  field_plan ordinary;
  field_plan& plan = is_first ? op.session.trial.pending : ordinary;
  tav_ebuf ebuf{};
  plan.request.reset(tav_flist_copy(op.list, &ebuf));
  plan.target = target_of(op.input);
  if (dd_failed(ebuf)) return refuse(op, ebuf.err_code, 0, "There is not enough memory.");
  if (!op.session.settings.fields_writeable) return refuse_writes(op, "fields_writeable");
  if (!make_plan(op, plan)) return nullptr;
  dd_flist output = nothing_to_give(op);  // before the commit: after it nothing may fail
  if (is_first || output == nullptr) return output;
  if (!write_fields(op.session, plan, op.why) ||
      !commit_write(op.session, journal_kind::FIELDS, plan.target, op.why)) {
    return nullptr;
  }
  return output;
}

}  // namespace dm
