// The types of fields, written and looked up.
#ifndef DPARSE_WRITE_TYPES_H
#define DPARSE_WRITE_TYPES_H

#include "dd/list.h"
#include "dparse/write/out.h"

namespace dparse {

// See dparseGetTypeFromField; what was gathered goes out before a failure is told.
int find_type(output& out, dd_list* field_list, const char* field_name);

// Writes the type's keyword, the name and " {" with an empty line: 1, or -1.
int put_head(output& out, int type_code, const char* name);

}  // namespace dparse

#endif
