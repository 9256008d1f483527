#ifndef DPARSE_WRITE_STORAGE_H
#define DPARSE_WRITE_STORAGE_H

#include "dparse/write/out.h"

// See dparseExportClassImplFieldAttrs.
int dparse_put_sql_names(dparse_out& out, int type_code, const char* name_text,
                         const char* storage_text, int indent);

#endif
