// Whether the fields that a class uses are defined, with the types it uses them with.
#include "dd/values.h"
#include "dd/walk.h"
#include "deploy/tav_deploy_import.h"
#include "deploy/tav_deploy_lookup.h"
#include "deploy/tav_deploy_report.h"

static constexpr char MODULE[] = "tav_deploy_import";

using enum tav_deploy_raises;

static void check_type(tav_flist_t* entry, dd_list& working_fields, const char* class_name,
                       tav_ebuf* ebuf) {
  const char* name = dd_text(entry, TAV_FLD_FIELD_NAME, at(ebuf, HERE));
  const int32_t type = dd_int(entry, TAV_FLD_FIELD_TYPE, at(ebuf, HERE));
  if (dd_failed(*ebuf)) return;
  tav_flist_t* definition = tav_deploy_get_field_by_name(working_fields, name);
  if (definition == nullptr) {
    return tav_deploy_report(HERE, ERROR, "Missing field definition",
                             "Error: Storable class %s, Missing field definition %s\n", class_name,
                             name);
  }
  const int32_t defined = dd_int(definition, TAV_FLD_FIELD_TYPE, at(ebuf, HERE));
  if (dd_failed(*ebuf) || defined == type) return;
  tav_deploy_report(HERE, ERROR, "field type mismatch",
                    "Error: Storable class %s, field %s type mismatch\n", class_name, name);
}

static int check_entries(tav_flist_t* node, dd_list& working_fields, const char* class_name) {
  tav_ebuf ebuf{};
  dd_walk walk(node, TAV_FLD_OBJ_ELEM);
  while (tav_flist_t* entry = walk.next(at(&ebuf, HERE))) {
    check_type(entry, working_fields, class_name, &ebuf);
    if (dd_failed(ebuf)) break;
    if (tav_deploy_check_field_types(entry, working_fields, class_name) < 1) return -1;
  }
  return dd_failed(ebuf) ? tav_deploy_call_failed(HERE, ebuf) : 1;
}

int tav_deploy_check_field_types(tav_flist_t* storable, dd_list& working_fields,
                                 const char* class_name) {
  if (check_entries(storable, working_fields, class_name) >= 1) return 1;
  return tav_deploy_fail(HERE, "Unable to check field types",
                         "Error: Unable to check field types\n");
}
