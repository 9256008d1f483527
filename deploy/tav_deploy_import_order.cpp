// Puts every class after its superclasses, and reports superclasses that are missing.
#include <string>

#include "dd/values.h"
#include "dd/walk.h"
#include "deploy/tav_deploy_import.h"
#include "deploy/tav_deploy_lookup.h"
#include "deploy/tav_deploy_report.h"

static constexpr char MODULE[] = "tav_deploy_import";

using enum tav_deploy_raises;

static void place_superclass(dd_list& ordering, dd_list& working_classes, dd_list& input_classes,
                             const char* name, tav_ebuf* ebuf) {
  if (tav_deploy_get_class_by_name(working_classes, name) == nullptr) {
    return tav_deploy_report(HERE, ERROR, "Missing parent superclass",
                             "Error: Missing parent superclass %s\n", name);
  }
  tav_flist_t* input = tav_deploy_get_class_by_name(input_classes, name);
  if (input == nullptr || tav_deploy_get_class_by_name(ordering, name) != nullptr) return;
  ordering.lend(input, at(ebuf, HERE));
}

int tav_deploy_prep_subclass(dd_list& ordering, dd_list& working_classes, dd_list& input_classes,
                             tav_flist_t* storable) {
  tav_ebuf ebuf{};
  const std::string name = dd_text(storable, TAV_FLD_NAME, at(&ebuf, HERE));
  if (name.empty()) return tav_deploy_fail(HERE, "Missing class name", "Error: Internal Error\n");
  if (name[0] != '/') {
    tav_deploy_report(HERE, ERROR, "class name does not begin with a '/'",
                      "Error: storable class names must begin with '/': %s\n", name.c_str());
    return 1;
  }
  for (size_t cut = name.find('/', 1); cut != std::string::npos; cut = name.find('/', cut + 1)) {
    const std::string superclass = name.substr(0, cut);
    place_superclass(ordering, working_classes, input_classes, superclass.c_str(), &ebuf);
  }
  ordering.lend(storable, at(&ebuf, HERE));
  return dd_failed(ebuf) ? tav_deploy_call_failed(HERE, ebuf) : 1;
}

int tav_deploy_import_order(tav_deploy_import_state& state) {
  tav_ebuf ebuf{};
  dd_walk walk(state.classes.get(), TAV_FLD_OBJ_DESC);
  while (tav_flist_t* storable = walk.next(at(&ebuf, HERE))) {
    if (tav_deploy_prep_subclass(state.ordered_classes, state.working_classes, state.classes,
                                 storable) >= 1) {
      continue;
    }
    return tav_deploy_fail(HERE, "Unable to prepare subclass",
                           "Error: Unable to prepare subclass\n");
  }
  return dd_failed(ebuf) ? tav_deploy_call_failed(HERE, ebuf) : 1;
}
