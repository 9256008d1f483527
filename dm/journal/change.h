// One change of a record: a field or a class that was added, changed or deleted; and how changes
// are packed into texts.
//
// The state of a thing is a text that is the same whatever engine keeps it: of a class its
// definition as it is stored (JSON), of a field field_state. A change keeps the state before it
// relative to the state after, without the beginning and the end that both have, so that a journal
// is read backwards from the present; and a hash of the state after, so that a wrong present is
// noticed.
#ifndef DM_JOURNAL_CHANGE_H
#define DM_JOURNAL_CHANGE_H

#include <cstdint>
#include <string>
#include <string_view>

#include "dm/store.h"

namespace dm {

// Letters of the format: never change them.
enum class change_of : char { FIELD = 'f', CLASS = 'c' };
enum class change_how : char {
  ADDED = 'n',
  CHANGED = 'c',
  DELETED = 'd',
  FOUND = 'p'  // was there when the journal began: what was before is not known
};

// Texts are borrowed.
struct journal_change {
  change_of what;
  change_how how;
  std::string_view name;    // as it was written first
  size_t head = 0;          // how many bytes at the beginning of the state after are those before
  size_t tail = 0;          // the same of its end
  std::string_view middle;  // what stood between these before; of a deleted thing all
  std::string_view digest;  // hash of the state after; "" of a deleted thing
};

// The states of a thing around a change; null: it is not there. At least one is there.
struct journal_states {
  const std::string_view* before;
  const std::string_view* after;
};

// Appends the change, packed. Equal states are no change: nothing is appended then. Gives whether
// something was.
bool pack_change(std::string& packed, change_of what, std::string_view name,
                 const journal_states& states);
// The same of a thing that is there when the journal begins.
void pack_found(std::string& packed, change_of what, std::string_view name, std::string_view state);

// Takes the next change off a packed text. False where the text is none of ours.
bool unpack_change(std::string_view& packed, journal_change& change);

// Whether the thing was there before the change (not so where that is not known).
inline bool was_there(const journal_change& change) {
  return change.how == change_how::CHANGED || change.how == change_how::DELETED;
}

// Whether the change left the thing in this state (null: not there).
bool has_left(const journal_change& change, const std::string* after);

// The state before the change, given the one after it ("" of a deleted thing). False where they do
// not fit together. For a thing that was there before only.
bool state_before(const journal_change& change, std::string_view after, std::string& before);

// --- Fields ---------------------------------------------------------------------------------

// "NUMBER TYPE FLAGS NAME" and, where the field has a description, a blank and the description.
std::string field_state(const field_row& row);

// The field that a state tells of; texts are borrowed from `state`, in which the blank before the
// description is replaced by a NUL byte. The stamp is 0. False where it is none.
bool read_field_state(std::string& state, field_row& row);

}  // namespace dm

#endif
