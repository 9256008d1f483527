// What a 576 would write, worked out before any of it is written.
#ifndef DM_OPS_FIELD_PLAN_H
#define DM_OPS_FIELD_PLAN_H

#include "dd/owners.h"
#include "dm/field_request.h"

namespace dm {

struct session;

struct field_plan {
  dd_flist request;     // a copy of the input, which lives as long as the plan
  uint64_t target = 0;  // database number
  database_row database{};
  field_request asked;  // empty when it was refused
};

// The states of a planned field before it is written and after.
struct planned_states {
  std::string name;
  const std::string* before;  // borrowed from the plan; null: it is not there
  std::string after;
};
planned_states states_of(const field_plan& plan, const asked_field& field);

// Notes and writes the planned fields into the open transaction and, if there are any, raises the
// counter.
bool write_fields(session& session, const field_plan& plan, problem& why);

}  // namespace dm

#endif
