// Writing a record and its changes into the transaction whose changes they tell.
//
// Changes are noted as they are written; the record follows right before the commit. So it is there
// exactly when they are.
#ifndef DM_JOURNAL_WRITE_H
#define DM_JOURNAL_WRITE_H

#include <string>

#include "dm/journal/change.h"
#include "dm/journal/hash.h"

namespace dm {

// A run: what one session commits belongs together.
struct journal_run {
  std::string id = new_identity();
  int64_t deployment = 0;  // number of its first committed record; 0: none yet
};

// The record of the open transaction, as far as it is known. A new one for each transaction.
struct journal_draft {
  journal_record record{};  // number 0: nothing is noted yet
  sha256 content{};         // of the parts that were written
  std::string packed{};     // changes that are not written yet
  int64_t parts = 0;        // written so far
};

// Notes a change of a thing in a database. Equal states are no change.
bool note_change(store& store, journal_draft& draft, change_of what, std::string_view name,
                 const journal_states& states, problem& why);
// Notes that a thing is there when the journal begins.
bool note_found(store& store, journal_draft& draft, change_of what, std::string_view name,
                std::string_view state, problem& why);

// What the record is about, told before it is finished.
struct journal_subject {
  const char* kind;       // journal_kind
  uint64_t database = 0;  // number; 0: the whole dictionary
  std::string detail{};   // JSON; "" for none
  uint64_t login = 0;     // database of the login identity; 0 for none
};

// Writes the record if anything was noted. The commit must follow at once.
bool finish_record(store& store, journal_draft& draft, const journal_run& run,
                   const journal_subject& subject, problem& why);

// Writes a record in any case, and notes the deployment in the run.
bool add_event(store& store, journal_draft& draft, journal_run& run, const journal_subject& subject,
               problem& why);

// Finds out who is at work, once for the process. May ask a directory service, and so comes before
// a lock is taken. finish_record does it otherwise.
void find_out_who();

}  // namespace dm

#endif
