// The structure of each class of the input: a table of checks, and the loop that takes them.
#include "dd/values.h"
#include "dd/walk.h"
#include "deploy/import/checks/hierarchy.h"
#include "deploy/import/import.h"
#include "deploy/report.h"

static constexpr char MODULE[] = "tav_deploy_import";

// Of an entry the findings about its place come before those about what is nested in it.
static int check_entries(const deploy::checked_class& checked) {
  for (deploy::class_entry& entry : checked.entries) {
    deploy::check_placement(entry, checked.name);
    if (deploy::check_nesting(checked.read, entry, {checked.name}, 1) < 1) return -1;
  }
  return 1;
}

namespace {

struct class_check {
  int (*run)(const deploy::checked_class& checked);
  deploy::finding failure;
};

constexpr class_check CLASS_CHECKS[] = {
    {tav_deploy_check_field_types, "class-types-not-checked"},
    {check_entries, "class-structure-not-checked"},
    {deploy::check_hierarchy, "class-hierarchy-not-checked"},
};

}  // namespace

static int check_class(const deploy::checked_class& checked) {
  for (const class_check& check : CLASS_CHECKS) {
    if (check.run(checked) >= 1) continue;
    return deploy::report(HERE, check.failure, {.class_name = checked.name});
  }
  return 1;
}

static int entries_failed(const tav_ebuf& ebuf, const char* class_name) {
  deploy::call_failed(HERE, ebuf);
  deploy::report(HERE, "field-types-not-checked", {.class_name = class_name});
  return deploy::report(HERE, "class-types-not-checked", {.class_name = class_name});
}

int deploy::import_structure(deploy::import_state& state) {
  tav_ebuf ebuf{};
  deploy::class_hierarchy hierarchy{state.working_classes, {}, {}};
  dd_list_walk walk(state.ordered_classes);
  while (tav_flist_t* storable = walk.next(at(&ebuf, HERE))) {
    const char* name = dd_text(storable, TAV_FLD_NAME, at(&ebuf, HERE));
    if (dd_failed(ebuf)) break;
    const auto entries = deploy::entries_of(state.entries, storable, &ebuf);
    if (dd_failed(ebuf)) return entries_failed(ebuf, name);
    deploy::find_definitions(entries, state.working_fields);
    if (check_class({storable, name, entries, state.entries, hierarchy}) < 1) return -1;
  }
  return dd_failed(ebuf) ? deploy::call_failed(HERE, ebuf) : 1;
}
