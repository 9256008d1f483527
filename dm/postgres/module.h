// The store on a PostgreSQL server: a module of its own, loaded when a dictionary is there, because
// the client library of the server brings two dozen others along and costs every start.
#ifndef DM_POSTGRES_MODULE_H
#define DM_POSTGRES_MODULE_H

#include <string>

#include "dm/store.h"

namespace dm {

struct postgres_module {
  // The build that it belongs to; another one's records may look otherwise.
  const char* build;
  // Opens an existing dictionary. Where it is: a URL or a string of keys and values, as the
  // server's client library takes them.
  store_owner (*open)(const std::string& where, const open_options& options, problem& why);
  // Makes the tables in an existing database: a store whose open transaction holds them, which the
  // caller commits.
  store_owner (*begin_new)(const std::string& where, const open_options& options, problem& why);
};

// What the module exports under this name.
inline constexpr char POSTGRES_ENTRY[] = "tav_dm_postgres";
using postgres_entry = const postgres_module* (*)();

// Finds the module: beside the program, else where it is installed. It stays loaded. Null with the
// reason where there is none that can be used.
const postgres_module* load_postgres(problem& why);

}  // namespace dm

#endif
