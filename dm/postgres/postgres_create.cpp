// Making a dictionary in an existing database, all in one transaction.
#include "dm/postgres/postgres_handle.h"
#include "dm/postgres/postgres_schema.h"
#include "dm/schema.h"

namespace dm {

static bool is_usable(postgres_store& store, problem& why) {
  const result_owner state = execute(store,
                                     "SELECT current_setting('server_encoding'),"
                                     " to_regclass('dd_schema') IS NOT NULL",
                                     parameters(), why);
  if (state == nullptr) return false;
  if (std::string(PQgetvalue(state.get(), 0, 0)) != "UTF8") {
    return postgres_refuse(store, TAV_ERR_STORAGE,
                           "the database is not encoded in UTF8; make one WITH ENCODING 'UTF8' "
                           "TEMPLATE template0",
                           why);
  }
  return *PQgetvalue(state.get(), 0, 1) == 'f' ||
         postgres_refuse(store, TAV_ERR_CONFLICT, "there is one already; it is left as it is", why);
}

store_owner begin_new_postgres(const std::string& where, problem& why) {
  store_owner owner = connect_postgres(where, why);
  if (owner == nullptr) return nullptr;
  postgres_store& store = postgres_of(owner.get());
  const parameters version(int64_t{SCHEMA_VERSION});
  if (!is_usable(store, why) || !run(store, "BEGIN", why) || !run(store, POSTGRES_SCHEMA, why) ||
      execute(store, "INSERT INTO dd_schema (version) VALUES ($1)", version, why) == nullptr) {
    return nullptr;
  }
  store.is_writing = true;
  return owner;
}

}  // namespace dm
