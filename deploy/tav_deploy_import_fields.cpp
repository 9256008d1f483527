// Compares the field definitions of the input with the server's.
#include <utility>

#include "dd/values.h"
#include "dd/walk.h"
#include "deploy/tav_deploy_import.h"
#include "deploy/tav_deploy_lookup.h"
#include "deploy/tav_deploy_report.h"

static constexpr char MODULE[] = "tav_deploy_import";

using enum tav_deploy_raises;

namespace {

struct definition {
  tav_flist_t* element;
  const char* name;
  int32_t type;
  int32_t number;
};

}  // namespace

static definition read_definition(tav_flist_t* field, tav_ebuf* ebuf) {
  return {field, dd_text(field, TAV_FLD_FIELD_NAME, at(ebuf, HERE)),
          dd_int(field, TAV_FLD_FIELD_TYPE, at(ebuf, HERE)),
          dd_int(field, TAV_FLD_FIELD_NUM, at(ebuf, HERE))};
}

static void add_new(dd_list& working, const definition& field, tav_ebuf* ebuf) {
  if (tav_deploy_get_field_by_id(working, field.number) == nullptr) {
    return working.lend(field.element, at(ebuf, HERE));
  }
  tav_deploy_report(HERE, CONFLICT_AND_ERROR, "Duplicate field def by id in use conflict",
                    "Error: Conflicting field definition %s, id in use by different field\n",
                    field.name);
}

// Of several input fields of the name the first is marked, also when the working list has it from
// the input only.
static void mark_first(dd_list& fields, const char* name, tav_ebuf* ebuf) {
  tav_flist_t* first = tav_deploy_get_field_by_name(fields, name);
  if (first != nullptr) dd_set_int(first, TAV_FLD_FLAGS, DD_FIELD_ON_SERVER, at(ebuf, HERE));
}

// A definition of the input's own keeps its description: each is sent as it stands.
static void replace_description(dd_list& fields, const definition& field, const definition& known,
                                tav_ebuf* ebuf) {
  tav_deploy_report(HERE, CONFLICT, nullptr,
                    "Warning: Duplicate field definition %s, replacing description\n", field.name);
  const char* description = dd_text(field.element, TAV_FLD_DESCR, at(ebuf, HERE));
  if (*description == '\0') return;
  if (tav_deploy_get_field_by_name(fields, field.name) == known.element) return;
  dd_set_text(known.element, TAV_FLD_DESCR, description, at(ebuf, HERE));
}

static void keep_old(dd_list& fields, int32_t id, const definition& field, tav_ebuf* ebuf) {
  tav_deploy_report(HERE, NOTHING, nullptr, "Warning: Duplicate field definition %s, keeping old\n",
                    field.name);
  fields.drop(id, field.element, at(ebuf, HERE));
}

static void settle_known(tav_deploy_import_state& state, int32_t id, const definition& field,
                         const definition& known, tav_ebuf* ebuf) {
  if (field.type != known.type) {
    return tav_deploy_report(HERE, CONFLICT_AND_ERROR, "Duplicate field def by type conflict",
                             "Error: Conflicting field definition %s, different type\n",
                             field.name);
  }
  if (field.number != known.number) {
    return tav_deploy_report(HERE, CONFLICT_AND_ERROR, "Duplicate field def by id conflict",
                             "Error: Conflicting field definition %s, different id\n", field.name);
  }
  if (state.ctx->mode == TAV_DEPLOY_MODE_REPLACE) {
    return replace_description(state.fields, field, known, ebuf);
  }
  keep_old(state.fields, id, field, ebuf);
}

static void check_field(tav_deploy_import_state& state, int32_t id, tav_flist_t* element,
                        tav_ebuf* ebuf) {
  const definition field = read_definition(element, ebuf);
  if (dd_failed(*ebuf)) return;
  tav_flist_t* present = tav_deploy_get_field_by_name(state.working_fields, field.name);
  if (present == nullptr) return add_new(state.working_fields, field, ebuf);
  mark_first(state.fields, field.name, ebuf);
  const definition known = read_definition(present, ebuf);
  if (!dd_failed(*ebuf)) settle_known(state, id, field, known, ebuf);
}

int tav_deploy_import_fields(tav_deploy_import_state& state) {
  state.working_fields.give(std::move(state.server_fields));
  tav_ebuf ebuf{};
  dd_walk walk(state.fields.get(), TAV_FLD_FIELD);
  while (tav_flist_t* element = walk.next(at(&ebuf, HERE))) {
    check_field(state, walk.id(), element, &ebuf);
  }
  return dd_failed(ebuf) ? tav_deploy_call_failed(HERE, ebuf, "Flist Error") : 1;
}
