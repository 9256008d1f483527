#include "dm/predefined.h"

#include "dm/changes/drop_database.h"
#include "dm/journal/begin.h"

namespace dm {

#define FIELD_ROW(name, type, number, description) \
  {#name, number, type, description, DD_FIELD_PREDEFINED, 0},
static constexpr field_row PREDEFINED[] = {DD_FIELD_IDS(FIELD_ROW)};
#undef FIELD_ROW

std::span<const field_row> predefined_fields() {
  return PREDEFINED;
}

// A database that was there before goes on counting: to a session that fetched from the one before
// what is stamped in this one is newer.
static bool set_counter(store& store, uint64_t number, int64_t id, problem& why) {
  int64_t counter = 0;
  if (!last_counter(store, number, counter, why)) return false;
  return counter == 0 || store.calls->set_counter(&store, id, counter + 1, why);
}

static bool make_database(store& store, uint64_t number, journal_run& run, problem& why) {
  int64_t id = 0;
  journal_draft draft;
  if (!store.calls->add_database(&store, number, id, why) || !set_counter(store, number, id, why) ||
      !store.calls->add_fields(&store, id, predefined_fields(), why)) {
    return false;
  }
  for (const field_row& row : predefined_fields()) {
    const std::string state = field_state(row);
    const std::string_view after = state;
    if (!note_change(store, draft, change_of::FIELD, row.name, {nullptr, &after}, why)) {
      return false;
    }
  }
  return add_event(store, draft, run, {journal_kind::ADD_DATABASE, number}, why);
}

bool make_database(store& store, uint64_t number, problem& why) {
  journal_run run;
  return make_database(store, number, run, why);
}

bool make_first_database(store& store, uint64_t number, problem& why) {
  journal_run run;
  return begin_journal(store, journal_kind::INIT, "", run, why) &&
         make_database(store, number, run, why);
}

}  // namespace dm
