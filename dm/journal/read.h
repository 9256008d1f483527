// Reading the journal: its records, their changes, and what the dictionary was like at a time.
//
// All calls need an open transaction, and a dictionary that has a journal (has_journal). They give
// false with the reason when the store fails or the journal is damaged. A visitor's false ends the
// reading, which then counts as successful.
#ifndef DM_JOURNAL_READ_H
#define DM_JOURNAL_READ_H

#include <functional>
#include <map>
#include <optional>
#include <set>

#include "dm/journal/change.h"

namespace dm {

using record_visitor = std::function<bool(const journal_record&)>;
using change_visitor = std::function<bool(int64_t record, const journal_change&)>;

// Gives the records of a range, from its oldest or its newest end.
bool walk_records(store& store, const journal_range& range, const record_visitor& visitor,
                  problem& why);

// Gives the changes of the records in a range, record by record. A record changes each thing once
// at most. The change's texts are borrowed until the visitor returns.
bool walk_changes(store& store, const journal_range& range, const change_visitor& visitor,
                  problem& why);

// The problem of a record whose changes cannot be read or do not fit; gives false.
bool damaged_record(int64_t number, problem& why);

// Names a thing of a database: a letter for its kind, and its folded name.
std::string thing_key(change_of what, std::string_view name);

// A thing that was different at an earlier time.
struct past_thing {
  std::string name{};
  std::optional<std::string> state{};  // as it was; none: the thing was not there
};

// What of a database was different after a record than it is now. What is not in it was as now.
using past = std::map<std::string, past_thing>;  // by thing_key, so that classes come before fields

// Walks back from the present to the state after record `number` (0: before the first). `stored`
// has the database's row id and number. Where the way back ends before that (the journal began, or
// was pruned) the problem's code is TAV_ERR_NOT_FOUND; where a thing is not as the journal left it,
// TAV_ERR_CONFLICT. With keys it walks for those things alone.
bool look_back(store& store, const database_row& stored, int64_t number, past& found, problem& why,
               const std::set<std::string>* keys = nullptr);

// Why nothing can be said of a thing's past that is not as the record left it.
problem altered_thing(change_of what, std::string_view name, int64_t record);

// Whether the change of the record left the state that a way back has come to (null: nothing).
// Gives false with a problem where it did not: the thing was changed outside of the journal, or,
// where the way has passed a later change of it, the record is damaged.
bool must_have_left(int64_t record, const journal_change& change, const std::string* after,
                    bool was_changed_since, problem& why);

// The state of a thing as the dictionary has it now; none where it is not there.
bool present_state(store& store, int64_t database, change_of what, const std::string& name,
                   std::optional<std::string>& state, problem& why);

// The fields, or the classes, as they were: those of the dictionary with what is different, in the
// order of the stores (fields by number, classes by folded name). Class rows have no row id, and no
// row a stamp.
bool past_fields(store& store, int64_t database, const past& at, visitor<field_row> visitor,
                 problem& why);
bool past_classes(store& store, int64_t database, const past& at, visitor<class_row> visitor,
                  problem& why);

}  // namespace dm

#endif
