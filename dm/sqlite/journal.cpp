// Writing the journal, and the way from an older schema version to this one.
#include "dm/schema.h"
#include "dm/sqlite/handle.h"
#include "dm/sqlite/tables.h"

namespace dm {

bool sqlite_set_identity(store* base, const std::string& identity, problem& why) {
  return sqlite_use(sqlite_of(base), INSERT_IDENTITY).bind(identity).write(1, why);
}

bool sqlite_add_record(store* base, const journal_record& record, problem& why) {
  sqlite_use use(sqlite_of(base), INSERT_RECORD);
  use.bind(record.number).bind(record.deployment).bind(record.changes);
  for (const auto& row : JOURNAL_TEXTS) use.bind(record.*row.text);
  return use.write(1, why);
}

bool sqlite_add_part(store* base, const journal_part& part, problem& why) {
  sqlite_use use(sqlite_of(base), INSERT_PART);
  return use.bind(part.record).bind(part.part).bind(part.content).write(1, why);
}

// The triggers that refuse deletions are taken away and made again, in the same transaction.
bool sqlite_forget_records(store* base, int64_t before, problem& why) {
  sqlite_store& store = sqlite_of(base);
  const std::string number = std::to_string(before);
  const std::string sql =
      join({"DROP TRIGGER dd_journal_delete; DROP TRIGGER dd_journal_changes_delete;"
            " DELETE FROM dd_journal_changes WHERE record < ",
            number, "; DELETE FROM dd_journal WHERE number < ", number, ";", DELETION_GUARDS});
  return sqlite_run(store, sql.c_str(), why);
}

bool sqlite_upgrade(store* base, problem& why) {
  sqlite_store& store = sqlite_of(base);
  for (int version = store.version + 1; version <= SCHEMA_VERSION; ++version) {
    if (!sqlite_run(store, schema_step(version).c_str(), why)) return false;
  }
  const std::string mark = "PRAGMA user_version = " + std::to_string(SCHEMA_VERSION);
  if (!sqlite_run(store, mark.c_str(), why)) return false;
  store.version = SCHEMA_VERSION;
  return true;
}

}  // namespace dm
