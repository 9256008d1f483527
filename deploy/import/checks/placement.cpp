// What may stand at the top level of base classes and subclasses, and who has SYSTEM permission.
#include "dd/class_names.h"
#include "dd/system_permission.h"
#include "deploy/import/import.h"
#include "deploy/report.h"

static constexpr char MODULE[] = "tav_deploy_import";

using enum tav_deploy_raises;

static void report_system(const char* log_text, const char* class_name, const char* field_name) {
  tav_deploy_report(
      HERE, ERROR, log_text,
      "Error: Storable class %s, field %s with SYSTEM permission may not be specified\n",
      class_name, field_name);
}

static void check_in_subclass(const char* class_name, const char* field_name, int32_t type,
                              bool system) {
  if (!dd_is_container(type)) {
    tav_deploy_report(HERE, ERROR, "field outside of array in subclass",
                      "Error: Storable class %s, field %s is outside Array or Substruct\n",
                      class_name, field_name);
  }
  if (system) report_system("system field not allowed in subclass", class_name, field_name);
}

static void check_in_base_class(const char* class_name, const char* field_name, int32_t type,
                                bool system) {
  if (type == TAV_FLDT_SUBSTRUCT) {
    tav_deploy_report(HERE, ERROR, "substruct in base class",
                      "Error: Storable class %s, substruct %s not allowed in base class\n",
                      class_name, field_name);
  }
  if (system && !dd_may_be_system(field_name)) {
    report_system("system field not allowed in base except for special cases", class_name,
                  field_name);
  }
}

void tav_deploy_check_placement(const tav_deploy_entry& entry, const char* class_name) {
  const auto check = dd_is_subclass(class_name) ? check_in_subclass : check_in_base_class;
  check(class_name, entry.name, entry.type, entry.is_system);
}
