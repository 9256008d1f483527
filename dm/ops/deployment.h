// The operations 576 and 578 in one transaction, and what they make of each field and class.
#ifndef DM_OPS_DEPLOYMENT_H
#define DM_OPS_DEPLOYMENT_H

#include <optional>
#include <string>
#include <vector>

#include "dm/journal/change.h"
#include "dm/session.h"

namespace dm {

// Lists as 576 and 578 take them, without their target; borrowed.
struct deployment_lists {
  uint64_t database;
  const tav_flist_t* fields;
  const tav_flist_t* classes;
};

// A field or class that a deployment changes.
struct outcome {
  change_of what;
  std::string name;
  std::optional<std::string> before;  // its state; none: it is not there
  std::string after{};
  int32_t number = 0;                      // of a field
  std::vector<std::string> tables{};       // of a class: those that it has then
  std::vector<std::string> used_fields{};  // of a class
  bool has_containers = false;             // of a class: at its top level
};

struct deployment_result {
  std::vector<outcome> changes{};    // fields first; what stays as it is, is none
  std::vector<std::string> notes{};  // sentences for the DM's tavlog, once it is committed
};

// What they would make, asked of the session's snapshot: locks and writes nothing, and may be asked
// again. False where something is refused, or the store fails.
bool try_deployment(session& session, const deployment_lists& lists, deployment_result& result,
                    problem& why);

// Writes them into the open write transaction, which commit_write ends. False as above; undo_write
// must follow.
bool write_deployment(session& session, const deployment_lists& lists, deployment_result& result,
                      problem& why);

}  // namespace dm

#endif
