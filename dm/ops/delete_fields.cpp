// 585: deletes fields, all or none. Passes over those that the dictionary does not hold with the
// same name, number and type.
#include "dd/index.h"
#include "dm/ops/operations.h"
#include "dm/rules/class_world.h"

namespace dm {

struct doomed_field {
  std::string name;
  std::string state;
  int32_t number;
  int32_t elem_id;
};

static bool bad(operation& op, const field_row& row, int32_t elem_id, int32_t code,
                std::string_view fault) {
  op.why = {code, TAV_FLD_FIELD_NAME, elem_id, 0, join({"Field ", quoted(row.name), " ", fault})};
  return false;
}

static bool may_go(operation& op, const field_row& row, int32_t elem_id, uint64_t database) {
  if (!op.session.settings.fields_writeable) return true;  // delete_fields refuses all of them
  if ((row.flags & DD_FIELD_PREDEFINED) != 0) {
    return bad(op, row, elem_id, TAV_ERR_IN_USE, "is predefined and cannot be deleted.");
  }
  return !is_foreign(op.session, database, &seen_database::fields, row.stamp) ||
         bad(op, row, elem_id, TAV_ERR_CONFLICT,
             "was written by another session since this one fetched the fields; run again.");
}

// The fields of the request that the dictionary holds with the same name, number and type. False
// where one must not be deleted.
static bool find_doomed(operation& op, const database_row& database,
                        std::vector<doomed_field>& doomed) {
  store* store = op.session.store.get();
  uint32_t position = 0;
  int32_t id = 0;
  doomed.clear();
  while (const tav_node* node = tav_node_next(op.input, TAV_FLD_FIELD, &position, &id)) {
    const void* name = tav_node_get(node, TAV_FLD_FIELD_NAME);
    const auto* type = static_cast<const int32_t*>(tav_node_get(node, TAV_FLD_FIELD_TYPE));
    const auto* number = static_cast<const int32_t*>(tav_node_get(node, TAV_FLD_FIELD_NUM));
    if (name == nullptr || type == nullptr || number == nullptr) continue;
    auto note = [&](const field_row& row) {
      if (row.type != *type || row.number != *number) return true;
      if (!may_go(op, row, id, database.number)) return false;
      doomed.push_back({row.name, field_state(row), row.number, id});
      return true;
    };
    const choice named{choice::NAMED, static_cast<const char*>(name)};
    if (!store->calls->fields(store, database.id, named, visit<field_row>(note), op.why)) {
      return false;
    }
    if (failed(op.why)) return false;
  }
  return true;
}

using doomed_names = dd_index<dd_by_name, int64_t>;

// False, with the problem, where an entry of the class uses one of the fields.
static bool uses_none(operation& op, const class_def& definition, const doomed_names& names,
                      const std::vector<doomed_field>& doomed) {
  for (const entry_def& entry : definition.entries) {
    const int64_t* place = names.find(text_of(entry, ENTRY_NAME));
    if (place == nullptr) continue;
    const doomed_field& field = doomed[static_cast<size_t>(*place)];
    op.why = {TAV_ERR_IN_USE, TAV_FLD_FIELD_NAME, field.elem_id, 0,
              join({"Field ", quoted(field.name), " cannot be deleted: class ",
                    quoted(text_of(definition, CLASS_NAME)), " uses it."})};
    return false;
  }
  return true;
}

static bool are_unused(operation& op, int64_t database, const std::vector<doomed_field>& doomed) {
  doomed_names names;
  for (size_t i = 0; i < doomed.size(); ++i) {
    names.add_first(doomed[i].name.c_str(), static_cast<int64_t>(i));
  }
  class_reader reader;
  class_def definition;
  dd_flist list;
  auto look = [&](const class_row& row) {
    return load_class(reader, row, list, definition, op.why) &&
           uses_none(op, definition, names, doomed);
  };
  store* store = op.session.store.get();
  return store->calls->classes(store, database, {}, visit<class_row>(look), op.why) &&
         !failed(op.why);
}

static bool delete_all(operation& op, const database_row& database,
                       const std::vector<doomed_field>& doomed) {
  store* store = op.session.store.get();
  key_set deleted;  // the list may name a field twice
  for (const doomed_field& field : doomed) {
    const std::string_view before = field.state;
    if (!deleted.insert(folded(field.name)).second) continue;
    if (!note_change(op.session, change_of::FIELD, field.name, {&before, nullptr}, op.why)) {
      return false;
    }
    if (!store->calls->delete_field(store, database.id, field.number, op.why)) return false;
  }
  return store->calls->set_counter(store, database.id, database.counter + 1, op.why) &&
         commit_write(op.session, journal_kind::DELETE_FIELDS, database.number, op.why);
}

dd_flist delete_fields(operation& op) {
  database_row database{};
  std::vector<doomed_field> doomed;
  end_snapshot(op.session);
  if (!begin_read(op.session, op.why)) return nullptr;
  if (!find_database(op.session, op.input, 0, database, op.why)) return nullptr;
  if (!find_doomed(op, database, doomed)) return nullptr;
  if (doomed.empty()) return nothing_to_give(op);
  if (!op.session.settings.fields_writeable) return refuse_writes(op, "fields_writeable");
  // Again in a write transaction: the dictionary may have changed since.
  if (!begin_write(op.session, op.why)) return nullptr;
  if (!find_database(op.session, op.input, 1, database, op.why)) return nullptr;
  if (!find_doomed(op, database, doomed)) return nullptr;
  if (doomed.empty()) return nothing_to_give(op);
  if (!are_unused(op, database.id, doomed)) return nullptr;
  dd_flist output = nothing_to_give(op);  // before the commit: after it nothing may fail
  if (output == nullptr || !delete_all(op, database, doomed)) return nullptr;
  return output;
}

}  // namespace dm
