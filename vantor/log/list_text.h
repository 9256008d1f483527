// Values and lists as the records of a log show them.
#ifndef VANTOR_LOG_LIST_TEXT_H
#define VANTOR_LOG_LIST_TEXT_H

#include <string>

#include "vantor/binding.h"

namespace vantor {

// Appends the text made visible (dd/visible.h), and with backslashes doubled.
void append_escaped(std::string& out, const char* text);

// Appends one line per entry, indented by one step and more for the entries of elements.
void append_list(std::string& out, const tav_node* node);

}  // namespace vantor

#endif
