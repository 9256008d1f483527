// What may stand at the top level of base classes and subclasses, and who has SYSTEM permission.
#include <algorithm>

#include "dd/class_names.h"
#include "dd/fold.h"
#include "deploy/import/import.h"
#include "deploy/report.h"

static constexpr char MODULE[] = "tav_deploy_import";

// The fields of every object that the system itself keeps.
static bool may_be_system(const char* field_name) {
  static constexpr const char* FIELDS[] = {"TAV_FLD_CREATED_T",     "TAV_FLD_MOD_T",
                                           "TAV_FLD_READ_ACCESS",   "TAV_FLD_WRITE_ACCESS",
                                           "TAV_FLD_CREATE_ACCESS", "TAV_FLD_POID"};
  return std::any_of(std::begin(FIELDS), std::end(FIELDS),
                     [field_name](const char* name) { return dd_equal(name, field_name); });
}

static void check_in_subclass(const deploy::subject& about, int32_t type, bool system) {
  if (type != TAV_FLDT_ARRAY && type != TAV_FLDT_SUBSTRUCT) {
    deploy::report(HERE, "field-outside-array", about);
  }
  if (system) deploy::report(HERE, "system-field-in-subclass", about);
}

static void check_in_base_class(const deploy::subject& about, int32_t type, bool system) {
  if (type == TAV_FLDT_SUBSTRUCT) deploy::report(HERE, "substruct-in-base-class", about);
  if (system && !may_be_system(about.field)) {
    deploy::report(HERE, "system-field-in-base-class", about);
  }
}

void tav_deploy_check_placement(const tav_deploy_entry& entry, const char* class_name) {
  const auto check = dd_is_subclass(class_name) ? check_in_subclass : check_in_base_class;
  check({.class_name = class_name, .field = entry.name}, entry.type, entry.is_system);
}
