#include "dm/ops/deployment.h"

#include <new>

#include "dd/values.h"
#include "dm/folded.h"
#include "dm/ops/operations.h"

namespace dm {

// --- What becomes of each ------------------------------------------------------------------------

static void add_fields(const field_plan& plan, std::vector<outcome>& changes) {
  for (const asked_field& field : plan.asked.fields) {
    if (!field.is_planned) continue;
    planned_states states = states_of(plan, field);
    outcome& one = changes.emplace_back(outcome{change_of::FIELD, std::move(states.name), {}});
    if (states.before != nullptr) one.before = *states.before;
    one.after = std::move(states.after);
    one.number = *field.number;
  }
}

static void describe(const accepted_class& accepted, outcome& one) {
  one.after = accepted.after;
  one.tables = accepted.tables;
  one.used_fields.clear();
  one.has_containers = false;
  for (const entry_def& entry : accepted.definition.entries) {
    one.used_fields.emplace_back(text_of(entry, ENTRY_NAME));
    if (entry.depth == 1 && dd_is_container(entry.type)) one.has_containers = true;
  }
}

namespace {

// The classes that a 578 accepts, each once.
struct class_gatherer {
  std::vector<outcome> classes{};
  key_map<size_t> places{};

  void add(const accepted_class& accepted) {
    const std::string name = text_of(accepted.definition, CLASS_NAME);
    const auto [at, is_new] = places.try_emplace(folded(name), classes.size());
    if (is_new) {
      classes.push_back({change_of::CLASS, name, {}});
      if (accepted.before != nullptr) classes.back().before = *accepted.before;
    }
    describe(accepted, classes[at->second]);
  }
};

}  // namespace

static void add_classes(class_gatherer& from, std::vector<outcome>& changes) {
  for (outcome& one : from.classes) {
    if (one.before != one.after) changes.push_back(std::move(one));
  }
}

// --- The operations ------------------------------------------------------------------------------

static dd_flist addressed(const tav_flist_t* list, uint64_t database, tav_ebuf* ebuf) {
  dd_flist request(tav_flist_copy(list, ebuf));
  dd_put(request.get(), TAV_FLD_POID, 0, dd_poid(tav_poid_create(database, "/dd", 1, ebuf)), ebuf);
  return request;
}

// Carries out the operation, unless the list has nothing for it.
static bool carry_out(session& session, const tav_flist_t* list, uint32_t array, uint64_t database,
                      dd_flist (*run)(operation&), uint32_t flags, deployment_result& result,
                      problem& why) {
  if (tav_node_count(tav_node_of(list), array) == 0) return true;
  tav_ebuf ebuf{};
  const dd_flist request = addressed(list, database, &ebuf);
  if (dd_failed(ebuf)) throw std::bad_alloc();
  operation op{session, request.get(), tav_node_of(request.get()), flags, {}};
  const dd_flist output = run(op);
  why = std::move(op.why);
  for (std::string& note : op.notes) result.notes.push_back(std::move(note));
  return output != nullptr;
}

static bool plan_fields(session& session, const deployment_lists& lists, deployment_result& result,
                        problem& why) {
  result = {};
  if (!carry_out(session, lists.fields, TAV_FLD_FIELD, lists.database, set_fields, 0, result, why))
    return false;
  add_fields(session.trial.pending, result.changes);
  return true;
}

static bool set_watched(session& session, const deployment_lists& lists, uint32_t flags,
                        deployment_result& result, problem& why) {
  class_gatherer found;
  session.watch = [&found](const accepted_class& accepted) { found.add(accepted); };
  const bool is_done = carry_out(session, lists.classes, TAV_FLD_OBJ_DESC, lists.database,
                                 set_classes, flags, result, why);
  session.watch = nullptr;
  add_classes(found, result.changes);
  return is_done;
}

// The refusal stands for that of a user who may not write, whose trials are made on a snapshot.
bool try_deployment(session& session, const deployment_lists& lists, deployment_result& result,
                    problem& why) {
  if (!begin_read(session, why)) return false;
  session.trial = {};
  session.trial.refusal.code = TAV_ERR_WRITE_REFUSED;
  const bool is_taken = plan_fields(session, lists, result, why) &&
                        set_watched(session, lists, TCM_OPFLG_TRIAL, result, why);
  session.trial = {};
  return is_taken;
}

bool write_deployment(session& session, const deployment_lists& lists, deployment_result& result,
                      problem& why) {
  session.trial = {};
  session.is_held = true;
  const bool is_written =
      plan_fields(session, lists, result, why) && write_fields(session, session.trial.pending, why);
  session.trial = {};
  session.trial.state = trial_state::OVER;
  const bool is_done = is_written && set_watched(session, lists, 0, result, why);
  session.is_held = false;
  return is_done;
}

}  // namespace dm
