// Merges the field entries of a class implementation into its interface.
#include "dd/report.h"
#include "dd/values.h"
#include "dd/walk.h"
#include "deploy/tav_deploy_import.h"
#include "deploy/tav_deploy_lookup.h"
#include "deploy/tav_deploy_report.h"

static constexpr char MODULE[] = "tav_deploy_import";

using enum tav_deploy_raises;

void tav_deploy_merge_storage(tav_flist_t* interface_node, tav_flist_t* impl_node, tav_ebuf* ebuf) {
  // Nothing else of an implementation is kept, neither its kind nor directory attributes.
  for (const uint32_t field : {TAV_FLD_SQL_TABLE, TAV_FLD_SQL_STORAGE}) {
    const char* text = dd_text_or_null(impl_node, field, at(ebuf, HERE));
    if (text != nullptr) dd_set_text(interface_node, field, text, at(ebuf, HERE));
  }
}

static void merge_entry(tav_flist_t* interface_entry, tav_flist_t* impl_entry,
                        const char* class_name, const char* name, tav_ebuf* ebuf) {
  const int32_t type = dd_int(interface_entry, TAV_FLD_FIELD_TYPE, at(ebuf, HERE));
  const int32_t impl_type = dd_int(impl_entry, TAV_FLD_FIELD_TYPE, at(ebuf, HERE));
  if (dd_failed(*ebuf)) return;
  if (type != impl_type) {
    tav_deploy_report(
        HERE, ERROR, "field type mismatch between interface/implementation",
        "Error: field type mismatch between interface/implementation of class %s, field %s\n",
        class_name, name);
  }
  tav_deploy_merge_storage(interface_entry, impl_entry, ebuf);
}

int tav_deploy_merge_class_fields(tav_flist_t* interface_node, tav_flist_t* impl_node,
                                  const char* class_name) {
  tav_ebuf ebuf{};
  dd_list entries(DD_ENTRIES, interface_node);
  dd_walk walk(impl_node, TAV_FLD_OBJ_ELEM);
  while (tav_flist_t* impl_entry = walk.next(at(&ebuf, HERE))) {
    const char* name = dd_text(impl_entry, TAV_FLD_FIELD_NAME, at(&ebuf, HERE));
    if (dd_failed(ebuf)) break;
    tav_flist_t* entry = tav_deploy_get_class_field_by_name(entries, name);
    if (entry == nullptr) {
      tav_deploy_report(HERE, ERROR, "field interface",
                        "Error: Missing field interface for %s when implementation was provided\n",
                        name);
    } else {
      merge_entry(entry, impl_entry, class_name, name, &ebuf);
    }
    if (dd_failed(ebuf)) break;
    if (tav_deploy_merge_class_fields(entry, impl_entry, class_name) < 1) {
      return tav_deploy_fail(HERE, "Unable to merge class fields",
                             "Error: Unable to merge class fields\n");
    }
  }
  return dd_failed(ebuf) ? tav_deploy_call_failed(HERE, ebuf) : 1;
}
