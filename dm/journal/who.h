// Who runs this process, where, and how it was called: texts that a record can hold.
#ifndef DM_JOURNAL_WHO_H
#define DM_JOURNAL_WHO_H

#include "dm/journal/record.h"

namespace dm {

// Longest texts that a record keeps of what somebody else chose, in bytes. What is longer is cut
// and ends with "...".
inline constexpr size_t LONGEST_WHO = 256;  // user, host, program, mode
inline constexpr size_t LONGEST_ARGUMENT = 1024;
inline constexpr size_t LONGEST_CALL = 8192;  // of all arguments, as JSON
inline constexpr size_t LONGEST_REASON = 2048;

// Fills user, host, program, version, mode, arguments and reason. What may hold a password is
// replaced by "***", what is no UTF-8 by U+FFFD.
void fill_who(journal_record& record);

// The text in UTF-8 and at most so long.
std::string made_fit(std::string_view text, size_t longest);

// The time as a record has it, UTC.
std::string time_now();

}  // namespace dm

#endif
