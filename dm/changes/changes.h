// Changes that the operations cannot make: fields and classes get the states that a caller wants,
// or are deleted, all in one transaction or none.
//
// Unlike operation 578 this writes storage as it is wanted, can empty a description, and can delete
// classes. What results must keep every rule that the operations know, and predefined fields keep
// all but their descriptions. Rows are stamped and the journal gets a record as with any write.
#ifndef DM_CHANGES_CHANGES_H
#define DM_CHANGES_CHANGES_H

#include <optional>
#include <span>
#include <vector>

#include "dm/journal/change.h"
#include "dm/settings.h"

namespace dm {

struct wanted_thing {
  change_of what = change_of::FIELD;
  std::string name{};  // in any case: its state tells how it is spelled
  // As the journal has states: of a field field_state, of a class its definition. None: gone.
  std::optional<std::string> state{};
};

struct change_purpose {
  std::string detail{};    // JSON object of the record: {"undo":17}
  bool is_trial = false;   // everything is carried out and then rolled back
  int64_t seen_end = ANY;  // last record that the caller saw: a later one of the database conflicts

  static constexpr int64_t ANY = -1;
};

// Why a thing cannot be changed as it was wanted. `why` has a sentence that names it.
struct refused_change {
  problem why{};
  change_of what = change_of::FIELD;
  std::string name{};
  journal_record by{};  // of a conflict: the record that made it; number 0: none is known
  // The field or class because of which it is in use, or which is missed; "" for none. And the
  // table (TAV_FLD_SQL_TABLE) or container that both would have.
  std::string user{};
  std::string shared{};
  bool is_missed = false;  // `user`
};

struct change_result {
  std::vector<refused_change> refused{};
  problem failure{};    // the dictionary cannot be reached, or takes no such write; code 0: neither
  int64_t changes = 0;  // that there were, or would be
  int64_t record = 0;   // number of their record, also of a trial's that may write; 0: none
};

// Carries the changes out. Ends a transaction that the store has open, and leaves none. A thing
// that is wanted twice gets the last state. False where anything was refused (all refusals are
// told) or failed; nothing is changed then.
bool change_things(store& store, const settings& settings, uint64_t database,
                   std::span<const wanted_thing> wanted, const change_purpose& purpose,
                   change_result& result);

// "by deployment 17 of 2026-11-01T10:42:07.000Z by user@host".
std::string told_by(const journal_record& record);
// "Field 'NAME'".
std::string told_thing(change_of what, std::string_view name);

}  // namespace dm

#endif
