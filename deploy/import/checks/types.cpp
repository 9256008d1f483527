// Whether the fields that a class uses are defined, with the types it uses them with.
#include "deploy/import/import.h"
#include "deploy/report.h"

static constexpr char MODULE[] = "tav_deploy_import";

using enum tav_deploy_raises;

// The storage is asked for later, but fetched while the entry is at hand.
static void check_type(tav_deploy_entry& entry, dd_list& working_fields, const char* class_name,
                       tav_ebuf* ebuf) {
  tav_deploy_storage_of(entry, ebuf);
  if (dd_failed(*ebuf)) return;
  if (!tav_deploy_find_definition(entry, working_fields)) {
    return tav_deploy_report(HERE, ERROR, "Missing field definition",
                             "Error: Storable class %s, Missing field definition %s\n", class_name,
                             entry.name);
  }
  if (entry.defined_type.value_or(0) == entry.type) return;
  tav_deploy_report(HERE, ERROR, "field type mismatch",
                    "Error: Storable class %s, field %s type mismatch\n", class_name, entry.name);
}

int tav_deploy_check_field_types(tav_deploy_class_entries& read, tav_flist_t* storable,
                                 dd_list& working_fields, const char* class_name) {
  tav_ebuf ebuf{};
  const tav_deploy_siblings entries = tav_deploy_entries_of(read, storable, &ebuf);
  for (tav_deploy_entry* entry = entries.first; entry != entries.last; ++entry) {
    working_fields.prefetch_name(entry->hash);
  }
  for (tav_deploy_entry* entry = entries.first; entry != entries.last; ++entry) {
    check_type(*entry, working_fields, class_name, &ebuf);
  }
  if (!dd_failed(ebuf)) return 1;
  tav_deploy_call_failed(HERE, ebuf);
  return tav_deploy_fail(HERE, "Unable to check field types",
                         "Error: Unable to check field types\n");
}
