// Rule: the field of each entry is defined, and has the entry's type.
#include "dm/rules/class_rules.h"

namespace dm {

void check_fields(const class_def& definition, class_world& world, findings& result) {
  for (const entry_def& entry : definition.entries) {
    const int64_t type = world.type_of(text_of(entry, ENTRY_NAME), entry.name_hash);
    if (type == name_cache::ABSENT) {
      blame(definition, entry, TAV_ERR_BAD_VALUE, TAV_FLD_FIELD_NAME,
            "is not defined in the database", result);
      result.back().against = text_of(entry, ENTRY_NAME);
    } else if (type != entry.type) {
      blame(definition, entry, TAV_ERR_WRONG_TYPE, TAV_FLD_FIELD_TYPE,
            "has another type than its field definition", result);
    }
  }
}

}  // namespace dm
