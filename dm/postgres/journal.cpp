// Writing the journal, and the way from an older schema version to this one.
#include "dm/postgres/handle.h"
#include "dm/postgres/tables.h"

namespace dm {

bool postgres_set_identity(store* base, const std::string& identity, problem& why) {
  return change_rows(postgres_of(base), "INSERT INTO dd_identity (identity) VALUES ($1)",
                     parameters(identity), 1, why);
}

bool postgres_add_record(store* base, const journal_record& record, problem& why) {
  static constexpr char INSERT[] =
      "INSERT INTO dd_journal (number, deployment, changes, time, database, kind, run, os_user,"
      " os_host, role, login, program, version, mode, called, reason, detail, previous, hash)"
      " VALUES ($1, $2, $3, $4, $5, $6, $7, $8, $9, $10, $11, $12, $13, $14, $15, $16, $17, $18,"
      " $19)";
  parameters with(record.number, record.deployment, record.changes);
  for (const auto& row : JOURNAL_TEXTS) with.add(record.*row.text);
  return change_rows(postgres_of(base), INSERT, with, 1, why);
}

bool postgres_add_part(store* base, const journal_part& part, problem& why) {
  const std::string key = join({"j", std::to_string(part.record), ".", std::to_string(part.part)});
  return put_change(postgres_of(base), change::ADD_JOURNAL_PART, key,
                    {part.record, part.part, part.content}, why);
}

// Only the owner of the tables may do that. A table that an open cursor reads cannot be altered.
bool postgres_forget_records(store* base, int64_t before, problem& why) {
  static constexpr char PARTS[] = "DELETE FROM dd_journal_changes WHERE record < $1";
  static constexpr char RECORDS[] = "DELETE FROM dd_journal WHERE number < $1";
  static constexpr char SWITCH_OFF[] =
      "CLOSE ALL;"
      "ALTER TABLE dd_journal DISABLE TRIGGER dd_journal_keep;"
      "ALTER TABLE dd_journal_changes DISABLE TRIGGER dd_journal_changes_keep";
  static constexpr char SWITCH_ON[] =
      "ALTER TABLE dd_journal ENABLE TRIGGER dd_journal_keep;"
      "ALTER TABLE dd_journal_changes ENABLE TRIGGER dd_journal_changes_keep";
  postgres_store& store = postgres_of(base);
  const parameters with(before);
  return execute(store, SWITCH_OFF, why) != nullptr &&
         execute(store, PARTS, with, why) != nullptr &&
         execute(store, RECORDS, with, why) != nullptr && execute(store, SWITCH_ON, why) != nullptr;
}

bool make_guards(postgres_store& store, problem& why) {
  if (!store.needs_guards) return true;
  store.needs_guards = false;
  return execute(store, POSTGRES_GUARDS, why) != nullptr;
}

bool postgres_upgrade(store* base, problem& why) {
  postgres_store& store = postgres_of(base);
  for (; store.version < SCHEMA_VERSION; ++store.version) {
    if (execute(store, POSTGRES_STEPS[store.version], why) == nullptr) return false;
    store.needs_guards = true;
  }
  return change_rows(store, "UPDATE dd_schema SET version = $1",
                     parameters(int64_t{SCHEMA_VERSION}), 1, why);
}

}  // namespace dm
