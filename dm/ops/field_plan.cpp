#include "dm/ops/field_plan.h"

#include "dm/session.h"

namespace dm {

planned_states states_of(const field_plan& plan, const asked_field& field) {
  const stored_field* there = stored_of(plan.asked, field);
  if (there == nullptr) {
    const field_row added{field.name, *field.number, *field.type, field.descr, 0, 0};
    return {field.name, nullptr, field_state(added)};
  }
  const std::string& stored = plan.asked.stored_states[static_cast<size_t>(there->state)];
  std::string taken_apart = stored;
  field_row row{};
  read_field_state(taken_apart, row);
  row.descr = field.descr;
  return {row.name, &stored, field_state(row)};
}

// Notes the new field, or the new description of a stored one.
static bool note_field(session& session, const field_plan& plan, const asked_field& field,
                       problem& why) {
  const planned_states states = states_of(plan, field);
  const std::string_view before = states.before != nullptr ? *states.before : std::string_view();
  const std::string_view after = states.after;
  return note_change(session, change_of::FIELD, states.name,
                     {states.before != nullptr ? &before : nullptr, &after}, why);
}

bool write_fields(session& session, const field_plan& plan, problem& why) {
  store* store = session.store.get();
  const int64_t id = plan.database.id;
  const int64_t stamp = plan.database.counter + 1;
  bool has_written = false;
  std::vector<field_row> added;
  for (const asked_field& field : plan.asked.fields) {
    if (!field.is_planned) continue;
    const field_row row{field.name, *field.number, *field.type, field.descr, 0, stamp};
    if (!note_field(session, plan, field, why)) return false;
    const bool is_stored = stored_of(plan.asked, field) != nullptr;
    if (!is_stored) added.push_back(row);
    if (is_stored && !store->calls->set_description(store, id, row, why)) return false;
    has_written = true;
  }
  if (!has_written) return true;
  if (!added.empty() && !store->calls->add_fields(store, id, added, why)) return false;
  if (!store->calls->set_counter(store, id, stamp, why)) return false;
  note_own(session, plan.target, stamp);
  return true;
}

}  // namespace dm
