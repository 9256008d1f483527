// The fields of a 576 beside what the dictionary holds under their names and numbers.
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
  // Positions of the first field of that name and of that number, where they are given.
  int32_t first_named = 0;
  int32_t first_numbered = 0;

  int32_t stored_number = 0;
  int32_t stored_type = 0;
  bool is_stored = false;        // under its name, with this number, type and stamp
  bool is_described_so = false;  // by the same text
  bool number_is_taken = false;  // by a stored field of another name
  bool is_planned = false;       // to be added, or described anew where it is stored
  bool is_well_formed = false;
  int64_t stamp = 0;
};

struct field_request {
  std::vector<asked_field> fields;
  dd_index<dd_by_name, int32_t> by_name;  // positions in `fields`
  dd_index<dd_by_number, int32_t> by_number;
};

inline asked_field& field_at(field_request& request, int32_t position) {
  return request.fields[static_cast<size_t>(position)];
}

// Reads the request; its texts are borrowed from the list.
void read_request(const tav_node* input, field_request& request);

// Finds what the dictionary holds: by its keys for few fields, in one pass over all for many.
bool look_up(store& store, int64_t database, field_request& request, problem& why);

}  // namespace dm

#endif
