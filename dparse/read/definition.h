// The two kinds of top-level definitions. Each reads one whose first keyword has just been read: 1,
// or -1 with a message.
#ifndef DPARSE_READ_DEFINITION_H
#define DPARSE_READ_DEFINITION_H

#include <cstdio>
#include <string_view>

#include "dparse/read/reader.h"

namespace dparse {

// Where definitions go.
struct definition_lists {
  dd_list& fields;
  dd_list& interfaces;
  dd_list& implementations;
  const char* filter;              // an implementation's name; null: all are kept
  const implementation_user& use;  // may be empty
};

int read_field(FILE* stream, dd_list& fields, int type_token);
// Whether a class's implementation may be called so.
bool names_implementation(std::string_view word);
int read_class(FILE* stream, const definition_lists& to);

}  // namespace dparse

#endif
