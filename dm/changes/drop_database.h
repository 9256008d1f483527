// Deleting a database of the dictionary with all that it holds.
#ifndef DM_CHANGES_DROP_DATABASE_H
#define DM_CHANGES_DROP_DATABASE_H

#include "dm/changes/changes.h"

namespace dm {

// Deletes the database. The record of the journal (drop-database) holds the last state of each
// field and class, so that the past of the database can still be told. The dictionary's only one is
// refused. Conventions are those of change_things.
bool drop_database(store& store, const settings& settings, uint64_t number,
                   const change_purpose& purpose, change_result& result);

// The counter that the database of that number ended with when it was deleted last; 0 where it
// never was, as far as the journal tells.
bool last_counter(store& store, uint64_t number, int64_t& counter, problem& why);

}  // namespace dm

#endif
