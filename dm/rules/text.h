// Which texts and names a dictionary takes: those that the definition language can write.
#ifndef DM_RULES_TEXT_H
#define DM_RULES_TEXT_H

#include <cstddef>

namespace dm {

// The most bytes of a text in the language, where a tab and a newline take two each.
inline constexpr size_t LONGEST_TEXT = 2047;

// What is wrong with a text ("is not UTF-8", ...), as the end of a sentence; null when nothing is.
const char* text_fault(const char* text);

// The same for the name of a field: one word of the language.
const char* field_name_fault(const char* name);

// The same for the name of a class: a path of words.
const char* class_name_fault(const char* name);

}  // namespace dm

#endif
