// The types of fields, written and looked up.
#ifndef DPARSE_WRITE_TYPES_H
#define DPARSE_WRITE_TYPES_H

#include "dd/list.h"
#include "dparse/write/out.h"

// See dparseGetTypeFromField; what was gathered goes out before a failure is told.
int dparse_find_type(dparse_out& out, dd_list* field_list, const char* field_name);

// Writes the type's keyword, the name and " {" with an empty line: 1, or -1.
int dparse_put_head(dparse_out& out, int type_code, const char* name);

#endif
