// Making a dictionary in an existing database, all in one transaction.
#include <algorithm>

#include "dm/postgres/handle.h"
#include "dm/postgres/tables.h"
#include "dm/schema.h"

namespace dm {

static bool is_usable(postgres_store& store, problem& why) {
  const result_owner state = execute(store,
                                     "SELECT current_setting('server_encoding'),"
                                     " to_regclass('dd_schema') IS NOT NULL",
                                     parameters(), why);
  if (state == nullptr || is_hidden(store, why)) return false;
  if (std::string(PQgetvalue(state.get(), 0, 0)) != "UTF8") {
    return postgres_refuse(store, TAV_ERR_STORAGE,
                           "the database is not encoded in UTF8; make one WITH ENCODING 'UTF8' "
                           "TEMPLATE template0",
                           why);
  }
  return *PQgetvalue(state.get(), 0, 1) == 'f' ||
         postgres_refuse(store, TAV_ERR_CONFLICT, "there is one already; it is left as it is", why);
}

static bool make_tables(postgres_store& store, problem& why) {
  return std::all_of(std::begin(POSTGRES_STEPS), std::end(POSTGRES_STEPS),
                     [&](const char* step) { return execute(store, step, why) != nullptr; });
}

store_owner begin_new_postgres(const std::string& where, const open_options& options,
                               problem& why) {
  store_owner owner = connect_postgres(where, options, why);
  if (owner == nullptr) return nullptr;
  postgres_store& store = postgres_of(owner.get());
  if (!is_usable(store, why)) return nullptr;
  store.is_writing = true;
  store.version = SCHEMA_VERSION;
  store.needs_guards = true;
  const parameters version(int64_t{SCHEMA_VERSION});
  const bool is_made =
      execute(store, "BEGIN", why) != nullptr && make_tables(store, why) &&
      change_rows(store, "INSERT INTO dd_schema (version) VALUES ($1)", version, 1, why);
  return is_made ? std::move(owner) : nullptr;
}

}  // namespace dm
