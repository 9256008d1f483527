// The structure of each class of the input: field types, placement, nesting, hierarchy.
#include "dd/values.h"
#include "dd/walk.h"
#include "deploy/import/checks/hierarchy.h"
#include "deploy/import/import.h"
#include "deploy/report.h"

static constexpr char MODULE[] = "tav_deploy_import";

static int check_entries(tav_deploy_class_entries& read, tav_deploy_siblings entries,
                         const char* class_name) {
  for (tav_deploy_entry& entry : entries) {
    tav_deploy_check_placement(entry, class_name);
    if (tav_deploy_check_nesting(read, entry, {class_name}, 1) < 1) return -1;
  }
  return 1;
}

static int check_class(tav_deploy_import_state& state, tav_deploy_hierarchy& hierarchy,
                       tav_flist_t* storable, const char* name) {
  if (tav_deploy_check_field_types(state.entries, storable, state.working_fields, name) < 1) {
    return deploy::report(HERE, "class-types-not-checked", {.class_name = name});
  }
  tav_ebuf none{};  // the class has been read
  const tav_deploy_siblings entries = tav_deploy_entries_of(state.entries, storable, &none);
  if (check_entries(state.entries, entries, name) < 1) {
    return deploy::report(HERE, "class-structure-not-checked", {.class_name = name});
  }
  if (tav_deploy_check_hierarchy(hierarchy, entries, name) < 1) {
    return deploy::report(HERE, "class-hierarchy-not-checked", {.class_name = name});
  }
  return 1;
}

int tav_deploy_import_structure(tav_deploy_import_state& state) {
  tav_ebuf ebuf{};
  tav_deploy_hierarchy hierarchy{state.working_classes, {}, {}};
  dd_list_walk walk(state.ordered_classes);
  while (tav_flist_t* storable = walk.next(at(&ebuf, HERE))) {
    const char* name = dd_text(storable, TAV_FLD_NAME, at(&ebuf, HERE));
    if (dd_failed(ebuf)) break;
    if (check_class(state, hierarchy, storable, name) < 1) return -1;
  }
  return dd_failed(ebuf) ? deploy::call_failed(HERE, ebuf) : 1;
}
