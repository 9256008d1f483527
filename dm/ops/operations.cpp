#include "dm/ops/operations.h"

#include "dd/fold.h"

namespace dm {

dd_flist nothing_to_give(operation& op) {
  tav_ebuf ebuf{};
  dd_flist output(tav_flist_create(&ebuf));
  return output != nullptr ? std::move(output)
                           : refuse(op, ebuf.err_code, 0, "There is not enough memory.");
}

dd_flist refuse(operation& op, int32_t code, uint32_t field, std::string sentence) {
  op.why = {code, field, 0, 0, std::move(sentence)};
  return nullptr;
}

dd_flist refuse_writes(operation& op, const char* entry) {
  return refuse(op, TAV_ERR_WRITE_REFUSED, 0,
                join({"The dictionary takes no such writes: set '", entry,
                      " = yes' in section [dm] of ", quoted(tav_conf_file()), "."}));
}

static const char* name_of(const tav_node* field) {
  const void* name = tav_node_get(field, TAV_FLD_FIELD_NAME);
  return name != nullptr ? static_cast<const char*>(name) : "";
}

static int32_t number_of(const tav_node* field, uint32_t which) {
  const void* value = tav_node_get(field, which);
  return value != nullptr ? *static_cast<const int32_t*>(value) : 0;
}

static const tav_node* next_unmarked(const tav_node* list, uint32_t& position) {
  int32_t id = 0;
  const tav_node* field;
  do {
    field = tav_node_next(list, TAV_FLD_FIELD, &position, &id);
  } while (field != nullptr && number_of(field, TAV_FLD_FLAGS) == DD_FIELD_ON_SERVER);
  return field;
}

bool same_unmarked_fields(const tav_node* all, const tav_node* unmarked) {
  uint32_t position = 0;
  uint32_t other_position = 0;
  int32_t id = 0;
  for (;;) {
    const tav_node* field = next_unmarked(all, position);
    const tav_node* other = tav_node_next(unmarked, TAV_FLD_FIELD, &other_position, &id);
    if (field == nullptr || other == nullptr) return field == other;
    if (field == other) continue;  // the lists share it
    if (!dd_equal(name_of(field), name_of(other))) return false;
    for (const uint32_t which : {TAV_FLD_FIELD_TYPE, TAV_FLD_FIELD_NUM}) {
      if (number_of(field, which) != number_of(other, which)) return false;
    }
  }
}

}  // namespace dm
