// What may stand at the top level of base classes and subclasses, and who has SYSTEM permission.
#include "dd/class_names.h"
#include "dd/system_permission.h"
#include "deploy/import/import.h"
#include "deploy/report.h"

static constexpr char MODULE[] = "tav_deploy_import";

static bool is_system(const deploy::class_entry& entry) {
  return entry.creates_as_system || entry.modifies_as_system;
}

static void report_entry(dd_site site, deploy::finding found, const char* class_name,
                         const deploy::class_entry& entry, const char* attribute = nullptr) {
  deploy::report(site, found,
                 {.class_name = class_name, .field = entry.name, .attribute = attribute});
}

static void report_system(dd_site site, deploy::finding found, const char* class_name,
                          const deploy::class_entry& entry) {
  report_entry(site, found, class_name, entry, entry.creates_as_system ? "CREATE" : "MODIFY");
}

static void check_in_subclass(const char* class_name, const deploy::class_entry& entry) {
  if (!dd_is_container(entry.type)) {
    report_entry(HERE, "field-outside-array", class_name, entry);
  }
  if (is_system(entry)) report_system(HERE, "system-field-in-subclass", class_name, entry);
}

static void check_in_base_class(const char* class_name, const deploy::class_entry& entry) {
  if (entry.type == TAV_FLDT_SUBSTRUCT) {
    report_entry(HERE, "substruct-in-base-class", class_name, entry);
  }
  if (is_system(entry) && !dd_may_be_system(entry.name)) {
    report_system(HERE, "system-field-in-base-class", class_name, entry);
  }
}

void deploy::check_placement(const deploy::class_entry& entry, const char* class_name) {
  const auto check = dd_is_subclass(class_name) ? check_in_subclass : check_in_base_class;
  check(class_name, entry);
}
