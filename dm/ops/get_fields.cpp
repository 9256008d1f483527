// 575: fields in ascending number, or the named ones in the order asked for.
#include "dm/folded.h"
#include "dm/ops/operations.h"

namespace dm {

void add_field(tav_flist_t* output, int32_t id, const field_row& row, tav_ebuf* ebuf) {
  tav_value values[] = {{TAV_FLD_FIELD_NAME, row.name},
                        {TAV_FLD_FIELD_NUM, &row.number},
                        {TAV_FLD_FIELD_TYPE, &row.type},
                        {},
                        {}};
  size_t count = 3;
  if (row.descr != nullptr) values[count++] = {TAV_FLD_DESCR, row.descr};
  if (row.flags != 0) values[count++] = {TAV_FLD_FIELD_FLAGS, &row.flags};
  tav_elem_add_filled(output, TAV_FLD_FIELD, id, values, count, ebuf);
}

template <class Add>
static bool get_named(operation& op, int64_t database, Add& add) {
  store* store = op.session.store.get();
  uint32_t position = 0;
  int32_t id = 0;
  while (const tav_node* wanted = tav_node_next(op.input, TAV_FLD_FIELD, &position, &id)) {
    const void* name = tav_node_get(wanted, TAV_FLD_FIELD_NAME);
    if (name == nullptr) {
      op.why = {TAV_ERR_MISSING_FIELD, TAV_FLD_FIELD_NAME, id, 0,
                "A field is asked for by no name."};
      return false;
    }
    const choice named{choice::NAMED, static_cast<const char*>(name)};
    if (!store->calls->fields(store, database, named, visit<field_row>(add), op.why)) return false;
  }
  return true;
}

dd_flist get_fields(operation& op) {
  database_row database{};
  if (!begin_read(op.session, op.why)) return nullptr;
  if (!find_database(op.session, op.input, 0, database, op.why)) return nullptr;
  tav_ebuf ebuf{};
  dd_flist output(tav_flist_create(&ebuf));
  int32_t count = 0;
  number_set given;
  const bool all = tav_node_count(op.input, TAV_FLD_FIELD) == 0;
  auto add = [&](const field_row& row) {
    if (all || given.insert(row.number).second) add_field(output.get(), count++, row, &ebuf);
    return !dd_failed(ebuf);
  };
  store* store = op.session.store.get();
  const bool read =
      all ? store->calls->fields(store, database.id, {}, visit<field_row>(add), op.why)
          : get_named(op, database.id, add);
  if (!read) return nullptr;
  if (dd_failed(ebuf)) return refuse(op, ebuf.err_code, ebuf.field, "The list cannot be built.");
  if (all) op.session.seen[database.number].fields = database.counter;
  return output;
}

}  // namespace dm
