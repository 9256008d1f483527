// The beginning of a journal: of a new dictionary, and of one that is there already.
#ifndef DM_JOURNAL_BEGIN_H
#define DM_JOURNAL_BEGIN_H

#include "dm/journal/write.h"

namespace dm {

// The detail of a record that gives the dictionary an identity; `from` is the one that its content
// had before, "" for none.
std::string identity_detail(const std::string& identity, const std::string& from);

// Gives the dictionary a new identity, and says so in a record of that kind. `from` as above.
bool begin_journal(store& store, const char* kind, const std::string& from, journal_run& run,
                   problem& why);

// Writes a record of that kind for each database, with all that is there: so that the journal knows
// the state that it begins with, and a change behind its back is noticed.
bool note_present(store& store, const char* kind, journal_run& run, problem& why);

// Brings a dictionary of an older schema version to the newest, in an open write transaction.
bool upgrade_dictionary(store& store, problem& why);

}  // namespace dm

#endif
