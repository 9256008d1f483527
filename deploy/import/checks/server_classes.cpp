// Compares the classes of the input with the server's.
#include <utility>

#include "dd/values.h"
#include "dd/walk.h"
#include "deploy/import/import.h"
#include "deploy/lookup.h"
#include "deploy/report.h"

static constexpr char MODULE[] = "tav_deploy_import";

static int compare_with_known(tav_flist_t* known, tav_flist_t* storable, const char* name,
                              tav_ebuf* ebuf) {
  deploy::report(HERE, "class-exists", {.class_name = name});
  deploy::check_class_storage_change(known, storable, name, ebuf);
  if (dd_failed(*ebuf)) return 1;
  if (tav_deploy_check_field_storage_change(known, storable, name) >= 1) return 1;
  return deploy::report(HERE, "storage-names-not-compared", {.class_name = name});
}

int deploy::import_classes(deploy::import_state& state) {
  tav_ebuf ebuf{};
  dd_list& working = state.working_classes;
  working.give(std::move(state.server_classes));
  dd_walk walk(state.classes.get(), TAV_FLD_OBJ_DESC);
  while (tav_flist_t* storable = walk.next(at(&ebuf, HERE))) {
    const char* name = dd_text(storable, TAV_FLD_NAME, at(&ebuf, HERE));
    if (dd_failed(ebuf)) break;
    tav_flist_t* known = tav_deploy_get_class_by_name(working, name);
    if (known == nullptr) {
      working.lend(storable, at(&ebuf, HERE));
    } else if (compare_with_known(known, storable, name, &ebuf) < 1) {
      return -1;
    }
  }
  return dd_failed(ebuf) ? deploy::call_failed(HERE, ebuf) : 1;
}
