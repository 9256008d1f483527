// The engine for PostgreSQL servers is a module, loaded only when a dictionary is on a server: the
// server's client library brings two dozen others along, and loading them would slow every start.
#ifndef DM_POSTGRES_MODULE_H
#define DM_POSTGRES_MODULE_H

#include <string>

#include "dm/store.h"

namespace dm {

struct postgres_module {
  // The build that it belongs to. The records of another build may be laid out differently.
  const char* build;
  // Opens an existing dictionary; null with the reason. `where` is a URL or a string of keys and
  // values, as the server's client library takes them.
  store_owner (*open)(const std::string& where, const open_options& options, problem& why);
  // Makes the tables in an existing database, in a transaction of the store that it gives. The
  // caller commits it. Null with the reason.
  store_owner (*begin_new)(const std::string& where, const open_options& options, problem& why);
};

// The function that the module exports: its name and type.
inline constexpr char POSTGRES_ENTRY[] = "tav_dm_postgres";
using postgres_entry = const postgres_module* (*)();

// Loads the module from beside the program, else from where it is installed. It stays loaded. Null
// with the reason where there is none that can be used.
const postgres_module* load_postgres(problem& why);

}  // namespace dm

#endif
