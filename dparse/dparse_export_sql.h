#ifndef DPARSE_DPARSE_EXPORT_SQL_H
#define DPARSE_DPARSE_EXPORT_SQL_H

#include "dparse/dparse_export_out.h"

// See dparseExportClassImplFieldAttrs.
int dparse_put_sql_names(dparse_out& out, int type_code, const char* name_text,
                         const char* storage_text, int indent);

#endif
