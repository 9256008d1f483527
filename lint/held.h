// An export, read as what a dictionary holds.
#ifndef LINT_HELD_H
#define LINT_HELD_H

#include <string>

#include "dd/list.h"

namespace lint {

// The fields, with the predefined ones that the text does not define, and the classes. False with
// what is wrong with the text. Throws std::bad_alloc.
bool read_held(const std::string& text, dd_list& fields, dd_list& classes, std::string& fault);

// What every new dictionary has. Throws std::bad_alloc.
dd_flist predefined_fields();

}  // namespace lint

#endif
