#include "dm/ops/field_plan.h"

#include "dm/session.h"

namespace dm {

bool write_fields(session& session, const field_plan& plan, problem& why) {
  store* store = session.store.get();
  const int64_t id = plan.database.id;
  const int64_t stamp = plan.database.counter + 1;
  bool has_written = false;
  std::vector<field_row> added;
  for (const asked_field& field : plan.asked.fields) {
    if (!field.is_planned) continue;
    const field_row row{field.name, *field.number, *field.type, field.descr, 0, stamp};
    if (!field.is_stored) added.push_back(row);
    if (field.is_stored && !store->calls->set_description(store, id, row, why)) return false;
    has_written = true;
  }
  if (!has_written) return true;
  if (!added.empty() && !store->calls->add_fields(store, id, added, why)) return false;
  if (!store->calls->set_counter(store, id, stamp, why)) return false;
  note_own(session, plan.target, stamp);
  return true;
}

}  // namespace dm
