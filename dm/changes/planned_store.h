// The dictionary as a plan would leave it: a store that answers what the rules ask (fields, classes
// and tables), from the plan where it speaks of a thing, else from the store that it is made for.
// Its fields come in no order.
#ifndef DM_CHANGES_PLANNED_STORE_H
#define DM_CHANGES_PLANNED_STORE_H

#include <set>

#include "dm/changes/plan.h"

namespace dm {

struct planned_table {
  planned_table(std::string table, int64_t owner) : name(std::move(table)), class_id(owner) {}
  std::string name;
  int64_t class_id;
};

struct planned_store : store {
  planned_store(store& from, const change_plan& plan);  // borrows both

  store& from;
  const change_plan& plan;
  std::map<std::string, planned_table> tables{};  // of the plan's classes, by folded name
  std::set<int64_t> planned_ids{};                // of its classes
};

}  // namespace dm

#endif
