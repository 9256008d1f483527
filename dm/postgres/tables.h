// The tables and views of a dictionary in PostgreSQL.
#ifndef DM_POSTGRES_SCHEMA_H
#define DM_POSTGRES_SCHEMA_H

#include "dm/schema.h"

namespace dm {

// SQL that makes the tables and views which each schema version adds to the one before, from
// version 1 on.
extern const char* const POSTGRES_STEPS[SCHEMA_VERSION];

// SQL that makes what keeps the journal as it is: its rows are not changed or deleted, and the role
// that a record names is that of the session which adds it. Made last, after a copied journal is
// in: its records name roles of others.
extern const char POSTGRES_GUARDS[];

}  // namespace dm

#endif
