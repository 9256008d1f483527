// The one name that the module exports.
#include "dm/postgres/module.h"

#include "dm/postgres/handle.h"

extern "C" __attribute__((visibility("default"))) const dm::postgres_module* tav_dm_postgres();

const dm::postgres_module* tav_dm_postgres() {
  static constexpr dm::postgres_module MODULE = {TAV_BUILD, dm::open_postgres,
                                                 dm::begin_new_postgres};
  return &MODULE;
}
