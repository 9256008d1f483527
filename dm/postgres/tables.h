// The tables and views of a dictionary in PostgreSQL.
#ifndef DM_POSTGRES_SCHEMA_H
#define DM_POSTGRES_SCHEMA_H

namespace dm {

extern const char POSTGRES_SCHEMA[];

}  // namespace dm

#endif
