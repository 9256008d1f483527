// The fields that every database is made with.
#ifndef DM_PREDEFINED_H
#define DM_PREDEFINED_H

#include <span>

#include "dm/store.h"

namespace dm {

// The rows of these fields as a new database holds them, in no particular order; stamp 0, no keys.
std::span<const field_row> predefined_fields();

// Adds a database with the predefined fields, in an open write transaction, and a record of that in
// the journal.
bool make_database(store& store, uint64_t number, problem& why);

// Fills a new dictionary: its identity, a database, the journal's first record.
bool make_first_database(store& store, uint64_t number, problem& why);

}  // namespace dm

#endif
