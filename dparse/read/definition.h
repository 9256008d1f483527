// The two kinds of top-level definitions. Each reads one whose first keyword has just been read: 1,
// or -1 with a message.
#ifndef DPARSE_READ_DEFINITION_H
#define DPARSE_READ_DEFINITION_H

#include <cstdio>
#include <string_view>

#include "dd/list.h"

namespace dparse {

int read_field(FILE* stream, dd_list& fields, int type_token);
// Whether a class's implementation may be called so.
bool names_implementation(std::string_view word);
int read_class(FILE* stream, dd_list& classes, dd_list& impls, const char* filter);

}  // namespace dparse

#endif
