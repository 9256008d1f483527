// Warns of storage names and clauses that differ from what the server holds: it keeps its own.
#include <unordered_map>

#include "dd/fold.h"
#include "dd/memory.h"
#include "dd/values.h"
#include "dd/walk.h"
#include "deploy/import/import.h"
#include "deploy/lookup.h"
#include "deploy/report.h"

static constexpr char MODULE[] = "tav_deploy_import";

using enum deploy::definition_side;

static bool differs(tav_flist_t* known, tav_flist_t* changed, uint32_t field, tav_ebuf* ebuf) {
  const char* old_text = dd_text(known, field, at(ebuf, HERE));
  const char* new_text = dd_text(changed, field, at(ebuf, HERE));
  return !dd_failed(*ebuf) && !dd_equal(old_text, new_text);
}

void deploy::check_class_storage_change(tav_flist_t* server_class, tav_flist_t* new_class,
                                        const char* class_name, tav_ebuf* ebuf) {
  if (differs(server_class, new_class, TAV_FLD_SQL_TABLE, ebuf)) {
    deploy::report(HERE, "class-table-kept",
                   {.class_name = class_name, .side = IMPLEMENTATION, .attribute = "SQL_TABLE"});
  }
  if (differs(server_class, new_class, TAV_FLD_SQL_STORAGE, ebuf)) {
    deploy::report(HERE, "class-storage-kept",
                   {.class_name = class_name, .side = IMPLEMENTATION, .attribute = "SQL_STORAGE"});
  }
}

static void warn_of_names(int32_t type, deploy::subject about) {
  const bool is_container = type == TAV_FLDT_ARRAY || type == TAV_FLDT_SUBSTRUCT;
  about.attribute = is_container || type == TAV_FLDT_BUF ? "SQL_TABLE" : "SQL_COLUMN";
  if (type == TAV_FLDT_BUF) {
    deploy::report(HERE, "buf-table-or-column-kept", about);
  } else if (is_container) {
    deploy::report(HERE, "table-kept", about);
  } else {
    deploy::report(HERE, "column-kept", about);
  }
}

static void compare_entry(tav_flist_t* known, tav_flist_t* entry, int32_t type, const char* name,
                          const deploy::entry_scope& scope, tav_ebuf* ebuf) {
  if (differs(known, entry, TAV_FLD_SQL_TABLE, ebuf)) {
    warn_of_names(type, scope.of(name, IMPLEMENTATION));
  }
  if (!differs(known, entry, TAV_FLD_SQL_STORAGE, ebuf)) return;
  deploy::subject about = scope.of(name, IMPLEMENTATION);
  about.attribute = "SQL_STORAGE";
  deploy::report(HERE, "storage-kept", about);
}

namespace {

// One class. The input may name a node again and again: the server's entries of it are indexed
// once.
struct comparison {
  std::unordered_map<tav_flist_t*, dd_list> server_nodes{};
};

}  // namespace

static int compare_node(comparison& of_class, tav_flist_t* server_node, tav_flist_t* new_node,
                        const deploy::entry_scope& scope) {
  tav_ebuf ebuf{};
  dd_list* server_entries = nullptr;
  dd_with_memory(at(&ebuf, HERE), [&] {
    server_entries =
        &of_class.server_nodes.try_emplace(server_node, DD_ENTRIES, server_node).first->second;
  });
  dd_walk walk(new_node, TAV_FLD_OBJ_ELEM);
  while (tav_flist_t* entry = walk.next(at(&ebuf, HERE))) {
    const char* name = dd_required_text(entry, TAV_FLD_FIELD_NAME, at(&ebuf, HERE));
    const int32_t type = dd_required_int(entry, TAV_FLD_FIELD_TYPE, at(&ebuf, HERE));
    if (dd_failed(ebuf)) break;
    tav_flist_t* known = tav_deploy_get_class_field_by_name(*server_entries, name);
    if (known == nullptr) continue;
    compare_entry(known, entry, type, name, scope, &ebuf);
    if (dd_failed(ebuf)) break;
    if (!dd_has_any(entry, TAV_FLD_OBJ_ELEM, at(&ebuf, HERE))) continue;
    const deploy::entry_path path{name, scope.around};
    if (compare_node(of_class, known, entry, {scope.class_name, &path}) >= 1) continue;
    return deploy::call_failed(HERE, ebuf, "storage-changes-not-checked");
  }
  return dd_failed(ebuf) ? deploy::call_failed(HERE, ebuf) : 1;
}

int tav_deploy_check_field_storage_change(tav_flist_t* server_node, tav_flist_t* new_node,
                                          const char* class_name) {
  comparison of_class;
  return compare_node(of_class, server_node, new_node, {class_name});
}
