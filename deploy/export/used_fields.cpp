// The definitions of the fields that exported classes use.
#include "dd/values.h"
#include "deploy/export/export.h"
#include "deploy/lookup.h"
#include "deploy/report.h"

static constexpr char MODULE[] = "tav_deploy_export";

static bool is_same_definition(tav_flist_t* a, tav_flist_t* b, tav_ebuf* ebuf) {
  return dd_int(a, TAV_FLD_FIELD_TYPE, ebuf) == dd_int(b, TAV_FLD_FIELD_TYPE, ebuf) &&
         dd_int(a, TAV_FLD_FIELD_NUM, ebuf) == dd_int(b, TAV_FLD_FIELD_NUM, ebuf);
}

int tav_deploy_add_included_field(deploy::included_fields& included, tav_flist_t* field,
                                  uint32_t hash) {
  tav_ebuf ebuf{};
  const char* name = dd_required_text(field, TAV_FLD_FIELD_NAME, at(&ebuf, HERE));
  if (dd_failed(ebuf)) return deploy::call_failed(HERE, ebuf, "unnamed-field");
  const size_t next = included.fields.size();
  const size_t place = included.places.add_first(name, hash, next);
  if (place == next) included.fields.push_back(field);
  tav_flist_t* present = included.fields[place];
  if (present == field || is_same_definition(present, field, at(&ebuf, HERE))) return 1;
  return deploy::report(HERE, "differing-definitions", {.field = name}, {.ebuf = &ebuf});
}

static int include_field(dparse::outlined_entry& entry, deploy::included_fields& included,
                         dd_list& fields, const tav_deploy_ctx_t& ctx, tav_ebuf* ebuf) {
  const char* name = entry.name != nullptr ? entry.name : "";
  const uint32_t hash = dd_hash(name);
  const dd_known* known = deploy::known_field(fields, name, hash);
  if (known == nullptr) return 1;
  tav_flist_t* field = known->element;
  entry.type = dd_int(field, TAV_FLD_FIELD_TYPE, at(ebuf, HERE), dparse::TYPE_NOT_KNOWN);
  if (!deploy::is_selected(field, ctx, at(ebuf, HERE))) return 1;
  if (tav_deploy_add_included_field(included, field, hash) >= 1) return 1;
  return deploy::report(HERE, "field-not-included", {.field = name});
}

// Looking up waits for memory mostly: all slots of a class are asked for before the first is read.
static void expect(std::span<dparse::outlined_entry> entries,
                   const deploy::included_fields& included, const dd_list& fields) {
  for (const dparse::outlined_entry& entry : entries) {
    const uint32_t hash = dd_hash(entry.name != nullptr ? entry.name : "");
    fields.prefetch_name(hash);
    included.places.prefetch(hash);
  }
}

// The failure at an entry is one of each entry around it.
static int fail_all(int depth) {
  for (; depth > 1; --depth) deploy::report(HERE, "entries-not-included");
  return -1;
}

int tav_deploy_get_include_class_fields(dparse::class_outline& classes,
                                        const dparse::outlined_class& storable,
                                        deploy::included_fields& included, dd_list& fields,
                                        const tav_deploy_ctx_t& ctx) {
  if (ctx.select_custom == 0 && ctx.select_predefined == 0) return 1;
  tav_ebuf ebuf{};
  const std::span<dparse::outlined_entry> entries = dparse::entries_of(classes, storable);
  expect(entries, included, fields);
  for (dparse::outlined_entry& entry : entries) {
    if (entry.entry == nullptr) {
      ebuf = classes.failure;
    } else if (include_field(entry, included, fields, ctx, &ebuf) < 1) {
      return fail_all(entry.depth);
    }
    if (dd_failed(ebuf)) {
      deploy::call_failed(HERE, ebuf);
      return fail_all(entry.depth);
    }
  }
  return 1;
}
