// Whether the fields that a class uses are defined, with the types it uses them with.
#include "deploy/import/import.h"
#include "deploy/report.h"

static constexpr char MODULE[] = "tav_deploy_import";

[[gnu::noinline]] static void check_type(const deploy::class_entry& entry,
                                         const deploy::entry_scope& scope) {
  if (!entry.is_defined) {
    deploy::report(HERE, "missing-field-definition", scope.of(entry.name));
  } else if (entry.defined_type.value_or(0) != entry.type) {
    deploy::report(HERE, "field-type-mismatch", scope.of(entry.name));
  }
}

static void check_types(deploy::siblings entries, const deploy::entry_scope& scope) {
  for (deploy::class_entry& entry : entries) {
    check_type(entry, scope);
    if (entry.size == 1) continue;
    const deploy::entry_path path{entry.name, scope.around};
    check_types(deploy::nested_in(entry), {scope.class_name, &path});
  }
}

int tav_deploy_check_field_types(const deploy::checked_class& checked) {
  check_types(checked.entries, {checked.name});
  return 1;
}
