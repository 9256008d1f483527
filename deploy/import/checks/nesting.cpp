// How field entries may nest.
#include "dd/memory.h"
#include "deploy/import/import.h"
#include "deploy/report.h"

static constexpr char MODULE[] = "tav_deploy_import";

static void check_position(const deploy::entry_scope& scope, const deploy::class_entry& child,
                           int32_t parent_type, int depth) {
  const int32_t type = child.type;
  const bool array_too_deep =
      type == TAV_FLDT_ARRAY && (parent_type == TAV_FLDT_SUBSTRUCT || depth >= 2);
  if (array_too_deep || !dd_is_container(parent_type)) {
    deploy::report(HERE, "illegal-nesting", scope.of(child.name));
  }
  if (type == TAV_FLDT_SUBSTRUCT) {
    deploy::report(HERE, "nested-substruct", scope.of(child.name));
  }
}

// Entries may be nested ten thousand levels deep: what reports, and buffers, stay out of the frames
// of the functions that call each other.
[[gnu::noinline]] static int mark_repeated(deploy::class_entries& read, deploy::siblings nested,
                                           const char* class_name) {
  tav_ebuf ebuf{};
  dd_with_memory(at(&ebuf, HERE), [&] { deploy::mark_repeated(nested, read.seen); });
  if (!dd_failed(ebuf)) return 1;
  deploy::call_failed(HERE, ebuf);
  return deploy::report(HERE, "nesting-not-checked", {.class_name = class_name});
}

[[gnu::noinline]] static void check_child(const deploy::entry_scope& scope,
                                          const deploy::class_entry& child, int32_t parent_type,
                                          int depth) {
  check_position(scope, child, parent_type, depth);
  if (child.is_repeated) deploy::report(HERE, "repeated-field", scope.of(child.name));
}

[[gnu::noinline]] static int not_checked(const char* class_name) {
  return deploy::report(HERE, "positions-not-checked", {.class_name = class_name});
}

int tav_deploy_check_field_positions(deploy::class_entries& read, deploy::class_entry& entry,
                                     const deploy::entry_scope& scope, int depth) {
  const deploy::siblings nested = deploy::nested_in(entry);
  if (mark_repeated(read, nested, scope.class_name) < 1) return -1;
  const deploy::entry_path path{entry.name, scope.around};
  const deploy::entry_scope inside{scope.class_name, &path};
  for (deploy::class_entry& child : nested) {
    check_child(inside, child, entry.type, depth);
    if (child.is_repeated) continue;
    if (deploy::check_nesting(read, child, inside, depth + 1) < 1) return -1;
  }
  return 1;
}

int deploy::check_nesting(deploy::class_entries& read, deploy::class_entry& entry,
                          const deploy::entry_scope& scope, int depth) {
  if (tav_deploy_check_field_positions(read, entry, scope, depth) >= 1) return 1;
  return not_checked(scope.class_name);
}
