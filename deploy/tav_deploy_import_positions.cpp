// How field entries may nest.
#include "dd/index.h"
#include "dd/values.h"
#include "dd/walk.h"
#include "deploy/tav_deploy_import.h"
#include "deploy/tav_deploy_report.h"

static constexpr char MODULE[] = "tav_deploy_import";

using enum tav_deploy_raises;

// The names that more than one of the entries has, each once.
static dd_index<dd_by_name> repeated_names(tav_flist_t* node, tav_ebuf* ebuf) {
  dd_index<dd_by_name> seen;
  dd_index<dd_by_name> repeated;
  dd_walk walk(node, TAV_FLD_OBJ_ELEM);
  while (tav_flist_t* entry = walk.next(at(ebuf, HERE))) {
    const char* name = dd_text(entry, TAV_FLD_FIELD_NAME, at(ebuf, HERE));
    if (seen.add_first(name, entry) != entry) repeated.add_first(name, entry);
  }
  return repeated;
}

static void check_position(const char* class_name, const char* field_name, int32_t type,
                           int32_t parent_type, int depth) {
  const bool array_too_deep =
      type == TAV_FLDT_ARRAY && (parent_type == TAV_FLDT_SUBSTRUCT || depth >= 2);
  if (array_too_deep || (parent_type != TAV_FLDT_ARRAY && parent_type != TAV_FLDT_SUBSTRUCT)) {
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

int tav_deploy_check_field_positions(dd_list& working_classes, tav_flist_t* entry,
                                     const char* class_name, int32_t type, int depth) {
  tav_ebuf ebuf{};
  const dd_index<dd_by_name> repeated = repeated_names(entry, &ebuf);
  dd_walk walk(entry, TAV_FLD_OBJ_ELEM);
  while (tav_flist_t* child = walk.next(at(&ebuf, HERE))) {
    const char* name = dd_text(child, TAV_FLD_FIELD_NAME, at(&ebuf, HERE));
    const int32_t child_type = dd_int(child, TAV_FLD_FIELD_TYPE, at(&ebuf, HERE));
    if (dd_failed(ebuf)) break;
    check_position(class_name, name, child_type, type, depth);
    if (repeated.find(name) != nullptr) {
      tav_deploy_report(HERE, ERROR, "Duplicate class field",
                        "Error: Storable class %s, Multiple use of field %s\n", class_name, name);
    } else if (tav_deploy_check_nesting(working_classes, child, class_name, child_type, depth + 1) <
               1) {
      return -1;
    }
  }
  if (!dd_failed(ebuf)) return 1;
  tav_deploy_call_failed(HERE, ebuf);
  return tav_deploy_fail(HERE, "Error: Internal Error", "Error: Internal Error\n");
}

int tav_deploy_check_nesting(dd_list& working_classes, tav_flist_t* entry, const char* class_name,
                             int32_t type, int depth) {
  if (tav_deploy_check_field_positions(working_classes, entry, class_name, type, depth) >= 1) {
    return 1;
  }
  return tav_deploy_fail(HERE, "Unable to check field positions",
                         "Error: Unable to check field positions for %s\n", class_name);
}
