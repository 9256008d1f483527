// The operations of the data manager. Before each of them settle_trial (dm/trial.h) is called.
#ifndef DM_OPS_OPERATIONS_H
#define DM_OPS_OPERATIONS_H

#include "dm/session.h"

namespace dm {

// One operation: its input, and what it reports.
struct operation {
  dm::session& session;
  const tav_flist_t* list;
  const tav_node* input;
  uint32_t flags;
  problem why;                       // set when the operation fails
  std::vector<std::string> notes{};  // sentences for the DM's tavlog, once it has succeeded
};

// Each gives the output list, or null with the problem set.
dd_flist get_fields(operation& op);     // 575
dd_flist set_fields(operation& op);     // 576
dd_flist get_classes(operation& op);    // 577
dd_flist set_classes(operation& op);    // 578
dd_flist delete_fields(operation& op);  // 585

// Adds the field as an element of TAV_FLD_FIELD, as 575 gives it.
void add_field(tav_flist_t* output, int32_t id, const field_row& row, tav_ebuf* ebuf);

// An empty output list; null with the problem set where memory ran out.
dd_flist nothing_to_give(operation& op);
// Sets the problem; gives null.
dd_flist refuse(operation& op, int32_t code, uint32_t field, std::string sentence);
// Refuses a write because `entry` of tav.conf does not allow it; gives null.
dd_flist refuse_writes(operation& op, const char* entry);

}  // namespace dm

#endif
