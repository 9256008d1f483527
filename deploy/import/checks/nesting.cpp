// How field entries may nest.
#include "dd/memory.h"
#include "deploy/import/import.h"
#include "deploy/report.h"

static constexpr char MODULE[] = "tav_deploy_import";

using enum tav_deploy_raises;

static void check_position(const char* class_name, const char* field_name, int32_t type,
                           int32_t parent_type, int depth) {
  const bool array_too_deep =
      type == TAV_FLDT_ARRAY && (parent_type == TAV_FLDT_SUBSTRUCT || depth >= 2);
  if (array_too_deep || !dd_is_container(parent_type)) {
    tav_deploy_report(HERE, ERROR, "Illegally nested field",
                      "Error: Storable class %s, Illegally nested field %s\n", class_name,
                      field_name);
  }
  if (type == TAV_FLDT_SUBSTRUCT) {
    tav_deploy_report(HERE, ERROR, "Illegally nested substruct",
                      "Error: Storable class %s, Illegally nested substruct %s\n", class_name,
                      field_name);
  }
}

int tav_deploy_check_field_positions(tav_deploy_class_entries& read, tav_deploy_entry& entry,
                                     const char* class_name, int depth) {
  const tav_deploy_siblings nested = tav_deploy_nested(entry);
  tav_ebuf ebuf{};
  dd_with_memory(at(&ebuf, HERE), [&] { tav_deploy_mark_repeated(nested, read.seen); });
  if (dd_failed(ebuf)) {
    tav_deploy_call_failed(HERE, ebuf);
    return tav_deploy_fail(HERE, "Error: Internal Error", "Error: Internal Error\n");
  }
  for (tav_deploy_entry& child : nested) {
    check_position(class_name, child.name, child.type, entry.type, depth);
    if (child.is_repeated) {
      tav_deploy_report(HERE, ERROR, "Duplicate class field",
                        "Error: Storable class %s, Multiple use of field %s\n", class_name,
                        child.name);
    } else if (tav_deploy_check_nesting(read, child, class_name, depth + 1) < 1) {
      return -1;
    }
  }
  return 1;
}

int tav_deploy_check_nesting(tav_deploy_class_entries& read, tav_deploy_entry& entry,
                             const char* class_name, int depth) {
  if (tav_deploy_check_field_positions(read, entry, class_name, depth) >= 1) return 1;
  return tav_deploy_fail(HERE, "Unable to check field positions",
                         "Error: Unable to check field positions for %s\n", class_name);
}
