// Which texts and names a dictionary takes: those that the definition language can write.
#ifndef DM_RULES_TEXT_H
#define DM_RULES_TEXT_H

#include "dd/longest_text.h"

namespace dm {

inline constexpr char TOO_LONG[] = "is longer than 2047 bytes";
static_assert(DD_LONGEST_TEXT == 2047);
inline constexpr char STORAGE_NAME_TOO_LONG[] = "is longer than 30 bytes";
static_assert(DD_LONGEST_STORAGE_NAME == 30);

// What is wrong with a text ("is not UTF-8", ...), as the end of a sentence; null when nothing is.
const char* text_fault(const char* text);

// The same for the name of a field: one word of the language.
const char* field_name_fault(const char* name);

// The same for the name of a class: a path of words.
const char* class_name_fault(const char* name);

// The same for the name of a table or column: what stands between quotes in a definition file, and
// is read back as it is. In the storage text of a BUF entry a blank ends a name, and "T=" begins
// the table's.
const char* storage_name_fault(const char* name, bool is_of_buf);

}  // namespace dm

#endif
