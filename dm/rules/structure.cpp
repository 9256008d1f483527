// Rule: where entries may stand, and which may have system permission.
#include "dd/class_names.h"
#include "dd/system_permission.h"
#include "dm/rules/class_rules.h"

namespace dm {

static constexpr int32_t BAD = TAV_ERR_BAD_VALUE;

static bool is_system(const entry_def& entry, entry_attribute which) {
  return dd_is_system(text_of(entry, which));
}

static void check_top_level(const class_def& definition, const entry_def& entry, findings& result) {
  const bool below = dd_is_subclass(text_of(definition, CLASS_NAME));
  if (below && !dd_is_container(entry.type)) {
    blame(definition, entry, BAD, TAV_FLD_FIELD_TYPE,
          "stands outside of an array or substruct, which a subclass does not allow", result);
  }
  if (!below && entry.type == TAV_FLDT_SUBSTRUCT) {
    blame(definition, entry, BAD, TAV_FLD_FIELD_TYPE, "is a substruct in a base class", result);
  }
  for (const entry_attribute which : {ENTRY_CREATE, ENTRY_MODIFY}) {
    if (!is_system(entry, which)) continue;
    if (!below && dd_may_be_system(text_of(entry, ENTRY_NAME))) return;
    blame(definition, entry, BAD, ENTRY_ATTRIBUTES[which].field,
          "has system permission, which only special fields of a base class may have", result);
  }
}

static const char* nesting_fault(const entry_def& entry, const entry_def& parent) {
  if (!dd_is_container(parent.type)) return "stands in a field that is no array or substruct";
  if (entry.type == TAV_FLDT_SUBSTRUCT) return "is a substruct below the top level";
  if (entry.type != TAV_FLDT_ARRAY) return nullptr;
  if (parent.type == TAV_FLDT_SUBSTRUCT) return "is an array in a substruct";
  return parent.depth >= 2 ? "is an array in an array in an array" : nullptr;
}

static void check_entry(const class_def& definition, const entry_def& entry, findings& result) {
  if (entry.values[ENTRY_NAME] == nullptr) {
    blame(definition, entry, TAV_ERR_MISSING_FIELD, TAV_FLD_FIELD_NAME, "has no name", result);
  }
  if (entry.values[ENTRY_TYPE] == nullptr) {
    blame(definition, entry, TAV_ERR_MISSING_FIELD, TAV_FLD_FIELD_TYPE, "has no type", result);
  }
  if (entry.parent == NO_PARENT) return check_top_level(definition, entry, result);
  const entry_def& parent = definition.entries[static_cast<size_t>(entry.parent)];
  if (const char* fault = nesting_fault(entry, parent)) {
    blame(definition, entry, BAD, TAV_FLD_OBJ_ELEM, fault, result);
  }
}

static void check_names(const class_def& definition, findings& result) {
  const entry_def* previous = nullptr;
  for (const int32_t place : places_by_name(definition)) {
    const entry_def& entry = definition.entries[static_cast<size_t>(place)];
    if (previous != nullptr && previous->parent == entry.parent &&
        dd_equal(text_of(*previous, ENTRY_NAME), text_of(entry, ENTRY_NAME))) {
      blame(definition, entry, TAV_ERR_CONFLICT, TAV_FLD_FIELD_NAME, "stands there twice", result);
    }
    previous = &entry;
  }
}

void check_structure(const class_def& definition, findings& result) {
  for (const entry_def& entry : definition.entries) check_entry(definition, entry, result);
  if (may_repeat(definition, ENTRY_NAME)) check_names(definition, result);
}

}  // namespace dm
