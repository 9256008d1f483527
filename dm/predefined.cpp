#include "dm/predefined.h"

namespace dm {

#define FIELD_ROW(name, type, number, description) \
  {#name, number, type, description, DD_FIELD_PREDEFINED, 0},
static constexpr field_row PREDEFINED[] = {DD_FIELD_IDS(FIELD_ROW)};
#undef FIELD_ROW

std::span<const field_row> predefined_fields() {
  return PREDEFINED;
}

bool make_database(store& store, uint64_t number, problem& why) {
  int64_t id = 0;
  return store.calls->add_database(&store, number, id, why) &&
         store.calls->add_fields(&store, id, predefined_fields(), why);
}

}  // namespace dm
