// The fields of a 576 beside what the dictionary holds under their names and numbers.
#ifndef DM_FIELD_REQUEST_H
#define DM_FIELD_REQUEST_H

#include "dd/index.h"
#include "dm/session.h"

namespace dm {

struct asked_field {
  const char* name;  // null: not given
  const int32_t* number;
  const int32_t* type;
  const char* descr;  // null: not given
  int32_t elem_id;

  bool is_stored = false;  // under its name, with these:
  int32_t stored_number = 0;
  int32_t stored_type = 0;
  int64_t stamp = 0;
  bool is_described_so = false;  // by the same text
  bool number_is_taken = false;  // by a stored field of another name
};

struct field_request {
  std::vector<asked_field> fields;
  dd_index<dd_by_name, int64_t> by_name;  // positions in `fields`
  dd_index<dd_by_number, int64_t> by_number;
};

// Reads the request; its texts are borrowed from the list.
void read_request(const tav_node* input, field_request& request);

// Finds what the dictionary holds: by its keys for few fields, in one pass over all for many.
bool look_up(store& store, int64_t database, field_request& request, problem& why);

}  // namespace dm

#endif
