#include "dm/journal/begin.h"

#include <vector>

namespace dm {

std::string identity_detail(const std::string& identity, const std::string& from) {
  const std::string origin = from.empty() ? "" : join({"\",\"from\":\"", from});
  return join({"{\"identity\":\"", identity, origin, "\"}"});
}

bool begin_journal(store& store, const char* kind, const std::string& from, journal_run& run,
                   problem& why) {
  const std::string identity = new_identity();
  journal_draft draft;
  return store.calls->set_identity(&store, identity, why) &&
         add_event(store, draft, run, {kind, 0, identity_detail(identity, from)}, why);
}

static bool note_fields(store& store, int64_t database, journal_draft& draft, problem& why) {
  bool noted = true;
  auto note = [&](const field_row& row) {
    return noted = note_found(store, draft, change_of::FIELD, row.name, field_state(row), why);
  };
  return store.calls->fields(&store, database, {}, visit<field_row>(note), why) && noted;
}

static bool note_classes(store& store, int64_t database, journal_draft& draft, problem& why) {
  bool noted = true;
  auto note = [&](const class_row& row) {
    return noted = note_found(store, draft, change_of::CLASS, row.name, row.definition, why);
  };
  return store.calls->classes(&store, database, {}, visit<class_row>(note), why) && noted;
}

bool note_present(store& store, const char* kind, journal_run& run, problem& why) {
  std::vector<database_row> databases;
  auto note = [&](const database_row& row) { return databases.push_back(row), true; };
  if (!store.calls->databases(&store, visit<database_row>(note), why)) return false;
  for (const database_row& row : databases) {
    journal_draft draft;
    if (!note_fields(store, row.id, draft, why) || !note_classes(store, row.id, draft, why) ||
        !add_event(store, draft, run, {kind, row.number}, why)) {
      return false;
    }
  }
  return true;
}

bool upgrade_dictionary(store& store, problem& why) {
  journal_run run;
  return store.calls->upgrade(&store, why) &&
         begin_journal(store, journal_kind::UPGRADE, "", run, why) &&
         note_present(store, journal_kind::UPGRADE, run, why);
}

}  // namespace dm
