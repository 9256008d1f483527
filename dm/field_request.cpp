#include "dm/field_request.h"

#include <cstring>

#include "dm/journal/change.h"

namespace dm {

static std::optional<int32_t> number_of(const tav_node* node, uint32_t field) {
  const auto* number = static_cast<const int32_t*>(tav_node_get(node, field));
  return number != nullptr ? std::optional(*number) : std::nullopt;
}

void read_request(const tav_node* input, field_request& request) {
  const uint32_t count = tav_node_count(input, TAV_FLD_FIELD);
  request.fields.reserve(count);
  request.by_name.reserve(count);
  request.by_number.reserve(count);
  problem fault;  // not used: the operation tests the field again when it reports the fault
  uint32_t position = 0;
  int32_t id = 0;
  while (const tav_node* node = tav_node_next(input, TAV_FLD_FIELD, &position, &id)) {
    asked_field field{};
    field.name = static_cast<const char*>(tav_node_get(node, TAV_FLD_FIELD_NAME));
    field.descr = static_cast<const char*>(tav_node_get(node, TAV_FLD_DESCR));
    field.number = number_of(node, TAV_FLD_FIELD_NUM);
    field.type = number_of(node, TAV_FLD_FIELD_TYPE);
    field.elem_id = id;
    field.is_well_formed = is_well_formed(field, fault);
    const auto place = static_cast<int32_t>(request.fields.size());
    if (field.name != nullptr) field.first_named = request.by_name.add_first(field.name, place);
    if (field.first_named < place) field_at(request, field.first_named).is_repeated = true;
    if (field.number) {
      field.first_numbered = request.by_number.add_first(*field.number, place);
    }
    request.fields.push_back(field);
  }
}

static void note_stored(field_request& request, const field_row& row) {
  if (const int32_t* place = request.by_name.find(row.name)) {
    asked_field& field = field_at(request, *place);
    field.is_stored = true;
    field.stored_number = row.number;
    field.stored_type = row.type;
    field.stamp = row.stamp;
    field.is_described_so =
        row.descr != nullptr && field.descr != nullptr && std::strcmp(row.descr, field.descr) == 0;
    if (field.is_repeated || (field.descr != nullptr && !field.is_described_so)) {
      field.stored_state = static_cast<int32_t>(request.stored_states.size());
      request.stored_states.push_back(field_state(row));
    }
  }
  if (const int32_t* place = request.by_number.find(row.number)) {
    asked_field& field = field_at(request, *place);
    field.number_is_taken = field.name == nullptr || !dd_equal(field.name, row.name);
  }
}

// Up to this cost fields are looked up one by one, without counting the dictionary's rows.
static constexpr size_t FEW = 200;
// In a pass over all fields so many rows cost about as much as the two look-ups of one field.
static constexpr int64_t ROWS_PER_LOOK_UP = 8;

static bool is_small(store& store, int64_t database, size_t asked, bool& small, problem& why) {
  small = asked * store.look_up_cost <= FEW;
  int64_t rows = 0;
  if (small) return true;
  if (!store.calls->count(&store, database, counted::FIELDS, rows, why)) return false;
  small = static_cast<int64_t>(asked * store.look_up_cost) * ROWS_PER_LOOK_UP < rows;
  return true;
}

bool look_up(store& store, int64_t database, field_request& request, problem& why) {
  auto note = [&](const field_row& row) { return note_stored(request, row), true; };
  const visitor<field_row> visitor = visit<field_row>(note);
  bool small = false;
  if (!is_small(store, database, request.fields.size(), small, why)) return false;
  if (!small) return store.calls->fields(&store, database, {}, visitor, why);
  for (size_t i = 0; i < request.fields.size(); ++i) {
    const asked_field field = request.fields[i];
    if (field.name == nullptr || !field.number) continue;
    const choice named{choice::NAMED, field.name};
    const choice numbered{choice::NUMBERED, nullptr, *field.number};
    if (!store.calls->fields(&store, database, named, visitor, why)) return false;
    if (!store.calls->fields(&store, database, numbered, visitor, why)) return false;
  }
  return true;
}

}  // namespace dm
