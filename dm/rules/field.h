// The rules that a field definition must keep by itself.
#ifndef DM_RULES_FIELD_H
#define DM_RULES_FIELD_H

#include <optional>

#include "dm/problem.h"

namespace dm {

// What a definition says; null or none: not given.
struct field_def {
  const char* name;
  const char* descr;
  std::optional<int32_t> number;
  std::optional<int32_t> type;
};

// Whether the definition keeps the rules; else the problem is the first fault.
bool is_well_formed(const field_def& field, problem& why);

// Sets the problem to "Field 'NAME' FAULT."; `which` is the attribute at fault. Gives false.
bool blame_field(const char* name, int32_t code, uint32_t which, std::string_view fault,
                 problem& why);

}  // namespace dm

#endif
