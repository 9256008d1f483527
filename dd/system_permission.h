// System permission: only the system itself sets the field. A definition may name such a field just
// in base classes, and only if every object of the system has it.
#ifndef DD_SYSTEM_PERMISSION_H
#define DD_SYSTEM_PERMISSION_H

#include <algorithm>

#include "dd/fold.h"

// As it is stored in TAV_FLD_CREATE_PERMISSION and TAV_FLD_MODIFY_PERMISSION.
inline constexpr char DD_SYSTEM[] = "System";

inline bool dd_is_system(const char* permission) {
  return dd_fold(*permission) == 's' && dd_equal(permission, DD_SYSTEM);
}

// The fields that a base class may name with system permission.
inline constexpr const char* DD_SYSTEM_FIELDS[] = {"TAV_FLD_CREATED_T",     "TAV_FLD_MOD_T",
                                                   "TAV_FLD_READ_ACCESS",   "TAV_FLD_WRITE_ACCESS",
                                                   "TAV_FLD_CREATE_ACCESS", "TAV_FLD_POID"};

inline bool dd_may_be_system(const char* field_name) {
  return std::any_of(std::begin(DD_SYSTEM_FIELDS), std::end(DD_SYSTEM_FIELDS),
                     [field_name](const char* name) { return dd_equal(name, field_name); });
}

#endif
