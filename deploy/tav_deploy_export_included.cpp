// The definitions of the fields that exported classes use.
#include <utility>

#include "dd/report.h"
#include "dd/values.h"
#include "dd/walk.h"
#include "deploy/tav_deploy_export.h"
#include "deploy/tav_deploy_lookup.h"
#include "deploy/tav_deploy_report.h"

static constexpr char MODULE[] = "tav_deploy_export";

static bool is_same_definition(tav_flist_t* a, tav_flist_t* b, tav_ebuf* ebuf) {
  return dd_int(a, TAV_FLD_FIELD_TYPE, ebuf) == dd_int(b, TAV_FLD_FIELD_TYPE, ebuf) &&
         dd_int(a, TAV_FLD_FIELD_NUM, ebuf) == dd_int(b, TAV_FLD_FIELD_NUM, ebuf);
}

int tav_deploy_add_included_field(dd_list& included, tav_flist_t* field) {
  tav_ebuf ebuf{};
  const char* name = dd_required_text(field, TAV_FLD_FIELD_NAME, at(&ebuf, HERE));
  if (dd_failed(ebuf)) {
    dd_print_error("Internal error\n");
    tav_deploy_display_ebuf(&ebuf);
    dd_log(HERE, "Flist error", ebuf);
    return -1;
  }
  tav_flist_t* present = included.find(name, at(&ebuf, HERE));
  if (dd_failed(ebuf)) return tav_deploy_call_failed(HERE, ebuf);
  if (present == nullptr) {
    included.append(dd_flist(tav_flist_copy(field, at(&ebuf, HERE))), at(&ebuf, HERE));
    return dd_failed(ebuf) ? tav_deploy_call_failed(HERE, ebuf, "Flist Error") : 1;
  }
  if (is_same_definition(present, field, at(&ebuf, HERE))) return 1;
  dd_log(HERE, "Duplicate field definition of different type or ID", ebuf);
  dd_print_error("Error: Duplicate field definition of different type or id\n");
  return -1;
}

static int include_field(const char* name, dd_list& included, dd_list& fields,
                         const tav_deploy_ctx_t& ctx, tav_ebuf* ebuf) {
  tav_flist_t* field = tav_deploy_get_field_by_name(fields, name);
  if (field == nullptr || !tav_deploy_is_selected(field, ctx, ebuf)) return 1;
  if (tav_deploy_add_included_field(included, field) >= 1) return 1;
  return tav_deploy_fail(HERE, "Unable to include field", "Error: Unable to include field\n");
}

int tav_deploy_get_include_class_fields(FILE* stream, tav_flist_t* parent, dd_list& included,
                                        dd_list& fields, const tav_deploy_ctx_t& ctx) {
  if (ctx.select_custom == 0 && ctx.select_predefined == 0) return 1;
  tav_ebuf ebuf{};
  dd_walk walk(parent, TAV_FLD_OBJ_ELEM);
  while (tav_flist_t* entry = walk.next(at(&ebuf, HERE))) {
    const char* name = dd_text(entry, TAV_FLD_FIELD_NAME, at(&ebuf, HERE));
    if (include_field(name, included, fields, ctx, at(&ebuf, HERE)) < 1) return -1;
    if (tav_deploy_get_include_class_fields(stream, entry, included, fields, ctx) < 1) {
      return tav_deploy_fail(HERE, "Unable to include class fields",
                             "Error: Unable to include class fields\n");
    }
  }
  return dd_failed(ebuf) ? tav_deploy_call_failed(HERE, ebuf) : 1;
}
