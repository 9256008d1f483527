// Which texts and names a dictionary takes: those that the definition language can write.
#ifndef DM_RULES_TEXT_H
#define DM_RULES_TEXT_H

#include "dd/longest_text.h"

namespace dm {

inline constexpr char TOO_LONG[] = "is longer than 2047 bytes";
static_assert(DD_LONGEST_TEXT == 2047);

// What is wrong with a text ("is not UTF-8", ...), as the end of a sentence; null when nothing is.
const char* text_fault(const char* text);

// The same for the name of a field: one word of the language.
const char* field_name_fault(const char* name);

// The same for the name of a class: a path of words.
const char* class_name_fault(const char* name);

}  // namespace dm

#endif
