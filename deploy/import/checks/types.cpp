// Whether the fields that a class uses are defined, with the types it uses them with.
#include "deploy/import/import.h"
#include "deploy/report.h"

static constexpr char MODULE[] = "tav_deploy_import";

// The storage is asked for later, but fetched while the entry is at hand.
static void check_type(tav_deploy_entry& entry, dd_list& working_fields,
                       const deploy::entry_scope& scope, tav_ebuf* ebuf) {
  tav_deploy_storage_of(entry, ebuf);
  if (dd_failed(*ebuf)) return;
  if (!tav_deploy_find_definition(entry, working_fields)) {
    deploy::report(HERE, "missing-field-definition", scope.of(entry.name));
  } else if (entry.defined_type.value_or(0) != entry.type) {
    deploy::report(HERE, "field-type-mismatch", scope.of(entry.name));
  }
}

static void check_types(tav_deploy_siblings entries, dd_list& working_fields,
                        const deploy::entry_scope& scope, tav_ebuf* ebuf) {
  for (tav_deploy_entry& entry : entries) {
    check_type(entry, working_fields, scope, ebuf);
    if (entry.size == 1) continue;
    const deploy::entry_path path{entry.name, scope.around};
    check_types(tav_deploy_nested(entry), working_fields, {scope.class_name, &path}, ebuf);
  }
}

int tav_deploy_check_field_types(tav_deploy_class_entries& read, tav_flist_t* storable,
                                 dd_list& working_fields, const char* class_name) {
  tav_ebuf ebuf{};
  const tav_deploy_siblings entries = tav_deploy_entries_of(read, storable, &ebuf);
  for (tav_deploy_entry* entry = entries.first; entry != entries.last; ++entry) {
    working_fields.prefetch_name(entry->hash);
  }
  check_types(entries, working_fields, {class_name}, &ebuf);
  if (!dd_failed(ebuf)) return 1;
  deploy::call_failed(HERE, ebuf);
  return deploy::report(HERE, "field-types-not-checked", {.class_name = class_name});
}
