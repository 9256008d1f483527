// Compares the field definitions of the input with the server's.
#include <utility>

#include "dd/values.h"
#include "dd/walk.h"
#include "deploy/import/import.h"
#include "deploy/lookup.h"
#include "deploy/report.h"

static constexpr char MODULE[] = "tav_deploy_import";

namespace {

struct definition {
  dd_known known;
  const char* name;
  uint32_t hash;
  int32_t number;

  int32_t type() const { return known.type.value_or(0); }
};

}  // namespace

static definition read_definition(tav_flist_t* field, tav_ebuf* ebuf) {
  definition read{{field}, dd_text(field, TAV_FLD_FIELD_NAME, at(ebuf, HERE)), 0, 0};
  const int32_t* type = dd_int_or_null(field, TAV_FLD_FIELD_TYPE, at(ebuf, HERE));
  if (type != nullptr) read.known.type = *type;
  read.number = dd_int(field, TAV_FLD_FIELD_NUM, at(ebuf, HERE));
  read.hash = dd_hash(read.name);
  return read;
}

static void add_new(dd_list& working, const definition& field, tav_ebuf* ebuf) {
  if (tav_deploy_get_field_by_id(working, field.number) == nullptr) {
    return working.lend(field.known, {field.name, field.hash, field.number}, at(ebuf, HERE));
  }
  deploy::report(HERE, "field-number-in-use", {.field = field.name, .attribute = "ID"});
}

static tav_flist_t* first_of_name(dd_list& fields, const definition& field) {
  const dd_known* first = deploy::known_field(fields, field.name, field.hash);
  return first != nullptr ? first->element : nullptr;
}

// Of several input fields of the name the first is marked, also when the working list has it from
// the input only.
static void mark_first(dd_list& fields, const definition& field, tav_ebuf* ebuf) {
  tav_flist_t* first = first_of_name(fields, field);
  if (first != nullptr) dd_set_int(first, TAV_FLD_FLAGS, DD_FIELD_ON_SERVER, at(ebuf, HERE));
}

// A definition of the input's own keeps its description: each is sent as it stands.
static void replace_description(dd_list& fields, const definition& field, tav_flist_t* known,
                                tav_ebuf* ebuf) {
  deploy::report(HERE, "field-description-replaced", {.field = field.name, .attribute = "DESCR"});
  const char* description = dd_text(field.known.element, TAV_FLD_DESCR, at(ebuf, HERE));
  if (*description == '\0' || first_of_name(fields, field) == known) return;
  dd_set_text(known, TAV_FLD_DESCR, description, at(ebuf, HERE));
}

static void keep_old(dd_list& fields, int32_t id, const definition& field, tav_ebuf* ebuf) {
  deploy::report(HERE, "field-kept", {.field = field.name});
  fields.drop(id, field.known.element, at(ebuf, HERE));
}

// The type was found with the name; the number is asked for only here.
static void settle_known(deploy::import_state& state, int32_t id, const definition& field,
                         const dd_known& known, tav_ebuf* ebuf) {
  const int32_t number = dd_int(known.element, TAV_FLD_FIELD_NUM, at(ebuf, HERE));
  if (dd_failed(*ebuf)) return;
  if (field.type() != known.type.value_or(0)) {
    deploy::report(HERE, "field-type-conflict", {.field = field.name});
    return;
  }
  if (field.number != number) {
    deploy::report(HERE, "field-number-conflict", {.field = field.name, .attribute = "ID"});
    return;
  }
  if (state.ctx->mode == TAV_DEPLOY_MODE_REPLACE) {
    return replace_description(state.fields, field, known.element, ebuf);
  }
  keep_old(state.fields, id, field, ebuf);
}

static void check_field(deploy::import_state& state, int32_t id, tav_flist_t* element,
                        tav_ebuf* ebuf) {
  const definition field = read_definition(element, ebuf);
  if (dd_failed(*ebuf)) return;
  const dd_known* known = deploy::known_field(state.working_fields, field.name, field.hash);
  if (known == nullptr) return add_new(state.working_fields, field, ebuf);
  mark_first(state.fields, field, ebuf);
  settle_known(state, id, field, *known, ebuf);
}

int deploy::import_fields(deploy::import_state& state) {
  tav_ebuf ebuf{};
  state.working_fields.give(std::move(state.server_fields));
  state.working_fields.reserve_lent(state.fields.count(at(&ebuf, HERE)));
  // Of a new dictionary nobody asks for the input's names, which take 6 MB for 100,000 fields.
  state.fields.forget_indexes_for(state.working_fields);
  dd_walk walk(state.fields.get(), TAV_FLD_FIELD);
  while (tav_flist_t* element = walk.next(at(&ebuf, HERE))) {
    check_field(state, walk.id(), element, &ebuf);
  }
  state.fields.forget_indexes();
  state.working_fields.forget_numbers();
  return dd_failed(ebuf) ? deploy::call_failed(HERE, ebuf, "field-list-failed") : 1;
}
