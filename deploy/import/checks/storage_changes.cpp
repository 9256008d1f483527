// Warns of storage names and clauses that differ from what the server holds: it keeps its own.
#include <unordered_map>

#include "dd/fold.h"
#include "dd/memory.h"
#include "dd/report.h"
#include "dd/values.h"
#include "dd/walk.h"
#include "deploy/import/import.h"
#include "deploy/lookup.h"
#include "deploy/report.h"

static constexpr char MODULE[] = "tav_deploy_import";

using enum tav_deploy_raises;

static bool differs(tav_flist_t* known, tav_flist_t* changed, uint32_t field, tav_ebuf* ebuf) {
  const char* old_text = dd_text(known, field, at(ebuf, HERE));
  const char* new_text = dd_text(changed, field, at(ebuf, HERE));
  return !dd_failed(*ebuf) && !dd_equal(old_text, new_text);
}

void tav_deploy_check_class_storage_change(tav_flist_t* server_class, tav_flist_t* new_class,
                                           const char* class_name, tav_ebuf* ebuf) {
  if (differs(server_class, new_class, TAV_FLD_SQL_TABLE, ebuf)) {
    tav_deploy_report(HERE, NOTHING, nullptr,
                      "Warning: Not allowed to change SQL_TABLE for class: %s, keeping old\n",
                      class_name);
  }
  if (differs(server_class, new_class, TAV_FLD_SQL_STORAGE, ebuf)) {
    tav_deploy_report(HERE, NOTHING, nullptr,
                      "Warning: Not allowed to change SQL_STORAGE for class: %s, keeping old\n",
                      class_name);
  }
}

static void warn_of_names(int32_t type, const char* class_name, const char* field_name) {
  switch (type) {
    case TAV_FLDT_BUF:
      return tav_deploy_report(HERE, NOTHING, nullptr,
                               "Warning: Not allowed to change SQL_TABLE or SQL_COLUMN for class: "
                               "%s field: %s, keeping old\n",
                               class_name, field_name);
    case TAV_FLDT_ARRAY:
    case TAV_FLDT_SUBSTRUCT:
      return tav_deploy_report(
          HERE, NOTHING, nullptr,
          "Warning: Not allowed to change SQL_TABLE for class: %s field: %s, keeping old\n",
          class_name, field_name);
    default:
      return tav_deploy_report(
          HERE, NOTHING, nullptr,
          "Warning: Not allowed to change SQL_COLUMN for class: %s field: %s, keeping old\n",
          class_name, field_name);
  }
}

static void compare_entry(tav_flist_t* known, tav_flist_t* entry, int32_t type,
                          const char* class_name, const char* field_name, tav_ebuf* ebuf) {
  if (differs(known, entry, TAV_FLD_SQL_TABLE, ebuf)) warn_of_names(type, class_name, field_name);
  if (differs(known, entry, TAV_FLD_SQL_STORAGE, ebuf)) {
    tav_deploy_report(
        HERE, NOTHING, nullptr,
        "Warning: Not allowed to change SQL_STORAGE for class: %s field: %s, keeping old\n",
        class_name, field_name);
  }
}

namespace {

// One class. The input may name a node again and again: the server's entries of it are indexed
// once.
struct comparison {
  const char* class_name;
  std::unordered_map<tav_flist_t*, dd_list> server_nodes{};
};

}  // namespace

static int compare_node(comparison& of_class, tav_flist_t* server_node, tav_flist_t* new_node) {
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
    compare_entry(known, entry, type, of_class.class_name, name, &ebuf);
    if (dd_failed(ebuf)) break;
    if (!dd_has_any(entry, TAV_FLD_OBJ_ELEM, at(&ebuf, HERE))) continue;
    if (compare_node(of_class, known, entry) >= 1) continue;
    dd_print_error("Error: Unable to check for changing storage specs\n");
    dd_log(HERE, "Unable to check for changing storage", ebuf);
    return -1;
  }
  return dd_failed(ebuf) ? tav_deploy_call_failed(HERE, ebuf) : 1;
}

int tav_deploy_check_field_storage_change(tav_flist_t* server_node, tav_flist_t* new_node,
                                          const char* class_name) {
  comparison of_class{class_name};
  return compare_node(of_class, server_node, new_node);
}
