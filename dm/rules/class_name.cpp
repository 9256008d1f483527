// Rule: a class has a valid name, and its immediate superclass exists.
#include <cstring>

#include "dd/class_names.h"
#include "dm/rules/class_rules.h"
#include "dm/rules/text.h"

namespace dm {

void check_name(const class_def& definition, class_world& world, findings& result) {
  const char* name = text_of(definition, CLASS_NAME);
  if (definition.values[CLASS_NAME] == nullptr) {
    return blame(definition, TAV_ERR_MISSING_FIELD, TAV_FLD_NAME, "has no name", result);
  }
  if (const char* fault = class_name_fault(name)) {
    return blame(definition, TAV_ERR_BAD_VALUE, TAV_FLD_NAME,
                 join({"cannot have this name: it ", fault}), result);
  }
  if (!dd_is_subclass(name)) return;
  const std::string above(name, std::strrchr(name, '/'));
  if (world.has_class(above.c_str())) return;
  blame(definition, TAV_ERR_BAD_VALUE, TAV_FLD_NAME,
        join({"has no superclass: ", quoted(above),
              " is neither in the dictionary nor earlier "
              "in the list"}),
        result);
  result.back().against = above;
}

}  // namespace dm
