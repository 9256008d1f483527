// The fields that every database is made with.
#ifndef DM_PREDEFINED_H
#define DM_PREDEFINED_H

#include <span>

#include "dm/store.h"

namespace dm {

// They, in no order, with the number, type, description and flags that they are made with.
std::span<const field_row> predefined_fields();

// Adds a database with the predefined fields.
bool make_database(store& store, uint64_t number, problem& why);

}  // namespace dm

#endif
