// The fields that a 576 sends, each with what the dictionary holds under its name and number.
#ifndef DM_FIELD_REQUEST_H
#define DM_FIELD_REQUEST_H

#include <compare>
#include <vector>

#include "dd/index.h"
#include "dm/rules/field.h"
#include "dm/store.h"
#include "vantor/binding.h"

namespace dm {

struct asked_field : field_def {
  static constexpr int32_t NONE = -1;

  int32_t elem_id;
  // Positions in `fields` of the first field with the same name, and of the first with the same
  // number; 0 where this field gives none.
  int32_t first_named = 0;
  int32_t first_numbered = 0;
  int32_t stored = NONE;         // position in `stored` of what the dictionary has of its name
  bool number_is_taken = false;  // by a stored field of another name
  bool is_planned = false;       // to be added or, where it is stored, to get its new description
  bool is_well_formed = false;   // keeps the rules of dm/rules/field.h
  bool is_repeated = false;      // another field of the request has its name
};
static_assert(sizeof(asked_field) <= 56, "a trial holds one for each field that is sent");

// A field that the dictionary has.
struct stored_field {
  int64_t stamp;
  int32_t number;
  int32_t type;
  int32_t state;         // its place in stored_states, where it may be described anew; else NONE
  bool is_described_so;  // has the description that is asked for
};

// A hash table of numbers would take four times the memory of a sorted row, and those of most
// requests are sorted already.
struct numbered_field {
  int32_t number;
  int32_t position;  // in `fields`

  auto operator<=>(const numbered_field&) const = default;
};

struct field_request {
  std::vector<asked_field> fields;
  dd_index<dd_by_name, int32_t> by_name;  // positions in `fields`
  std::vector<numbered_field> by_number;  // ascending; of each number the first field that gives it
  std::vector<stored_field> stored;
  std::vector<std::string> stored_states;  // of fields that the dictionary holds (field_state)
};

inline asked_field& field_at(field_request& request, int32_t position) {
  return request.fields[static_cast<size_t>(position)];
}

// What the dictionary has of the field's name, or null.
template <class Request>  // const or not
auto* stored_of(Request& request, const asked_field& field) {
  const bool is_stored = field.stored != asked_field::NONE;
  return is_stored ? &request.stored[static_cast<size_t>(field.stored)] : nullptr;
}

// Reads the request; its texts are borrowed from the list.
void read_request(const tav_node* input, field_request& request);

// Looks up what the dictionary holds, and notes it at the first field of each name and of each
// number: one by one for few fields, in one pass over all stored fields for many.
bool look_up(store& store, int64_t database, field_request& request, problem& why);

}  // namespace dm

#endif
