// The fields that a 576 sends, each with what the dictionary holds under its name and number.
#ifndef DM_FIELD_REQUEST_H
#define DM_FIELD_REQUEST_H

#include <vector>

#include "dd/index.h"
#include "dm/rules/field.h"
#include "dm/store.h"
#include "vantor/binding.h"

namespace dm {

struct asked_field : field_def {
  int32_t elem_id;
  // Positions in `fields` of the first field with the same name, and of the first with the same
  // number; 0 where this field gives none.
  int32_t first_named = 0;
  int32_t first_numbered = 0;

  int32_t stored_number = 0;
  int32_t stored_type = 0;
  bool is_stored = false;        // its name is, with stored_number, stored_type and stamp
  bool is_described_so = false;  // the stored field has the same description
  bool number_is_taken = false;  // by a stored field of another name
  bool is_planned = false;       // to be added or, where it is stored, to get its new description
  bool is_well_formed = false;   // keeps the rules of dm/rules/field.h
  bool is_repeated = false;      // another field of the request has its name
  int32_t stored_state = NO_STATE;  // its place in stored_states, where it may be described anew
  int64_t stamp = 0;

  static constexpr int32_t NO_STATE = -1;
};

struct field_request {
  std::vector<asked_field> fields;
  dd_index<dd_by_name, int32_t> by_name;  // positions in `fields`
  dd_index<dd_by_number, int32_t> by_number;
  std::vector<std::string> stored_states;  // of fields that the dictionary holds (field_state)
};

inline asked_field& field_at(field_request& request, int32_t position) {
  return request.fields[static_cast<size_t>(position)];
}

// Reads the request; its texts are borrowed from the list.
void read_request(const tav_node* input, field_request& request);

// Looks up what the dictionary holds, and notes it at the first field of each name and of each
// number: one by one for few fields, in one pass over all stored fields for many.
bool look_up(store& store, int64_t database, field_request& request, problem& why);

}  // namespace dm

#endif
