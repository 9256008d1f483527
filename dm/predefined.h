// The fields that every database is made with.
#ifndef DM_PREDEFINED_H
#define DM_PREDEFINED_H

#include "dm/store.h"

namespace dm {

// Adds a database with the predefined fields.
bool make_database(store& store, uint64_t number, problem& why);

}  // namespace dm

#endif
