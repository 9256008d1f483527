#include "dm/field_request.h"

#include <algorithm>
#include <cstring>

#include "dm/journal/change.h"

namespace dm {

static std::optional<int32_t> number_of(const tav_node* node, uint32_t field) {
  const auto* number = static_cast<const int32_t*>(tav_node_get(node, field));
  return number != nullptr ? std::optional(*number) : std::nullopt;
}

static void sort_numbers(field_request& request) {
  std::vector<numbered_field>& numbers = request.by_number;
  if (!std::is_sorted(numbers.begin(), numbers.end())) std::sort(numbers.begin(), numbers.end());
  const auto same = [](const numbered_field& a, const numbered_field& b) {
    return a.number == b.number;
  };
  for (size_t i = 1; i < numbers.size(); ++i) {
    if (!same(numbers[i - 1], numbers[i])) continue;
    field_at(request, numbers[i].position).first_numbered =
        field_at(request, numbers[i - 1].position).first_numbered;
  }
  numbers.erase(std::unique(numbers.begin(), numbers.end(), same), numbers.end());
}

// The first field that gives the number, or null.
static asked_field* find_numbered(field_request& request, int32_t number) {
  const auto& numbers = request.by_number;
  const auto at = std::lower_bound(numbers.begin(), numbers.end(), numbered_field{number, 0});
  const bool is_there = at != numbers.end() && at->number == number;
  return is_there ? &field_at(request, at->position) : nullptr;
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
      field.first_numbered = place;
      request.by_number.push_back({*field.number, place});
    }
    request.fields.push_back(field);
  }
  sort_numbers(request);
}

static void note_named(field_request& request, asked_field& field, const field_row& row) {
  if (field.stored == asked_field::NONE) {
    field.stored = static_cast<int32_t>(request.stored.size());
    request.stored.emplace_back();
  }
  stored_field& stored = *stored_of(request, field);
  stored = {row.stamp, row.number, row.type, asked_field::NONE, false};
  stored.is_described_so =
      row.descr != nullptr && field.descr != nullptr && std::strcmp(row.descr, field.descr) == 0;
  if (!field.is_repeated && (field.descr == nullptr || stored.is_described_so)) return;
  stored.state = static_cast<int32_t>(request.stored_states.size());
  request.stored_states.push_back(field_state(row));
}

static void note_stored(field_request& request, const field_row& row) {
  if (const int32_t* place = request.by_name.find(row.name)) {
    note_named(request, field_at(request, *place), row);
  }
  if (asked_field* field = find_numbered(request, row.number)) {
    field->number_is_taken = field->name == nullptr || !dd_equal(field->name, row.name);
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
