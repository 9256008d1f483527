#include "dm/store.h"

#include "dd/database_number.h"
#include "dm/schema.h"

namespace dm {

problem damaged_counter(uint64_t number) {
  return {TAV_ERR_STORAGE, TAV_FLD_POID, 0, 0,
          join({"The counter of database ", dd_database_text(number),
                " is damaged; restore the dictionary from a backup."})};
}

bool has_journal(store& store) {
  return store.calls->schema_version(&store) >= JOURNAL_VERSION;
}

}  // namespace dm
