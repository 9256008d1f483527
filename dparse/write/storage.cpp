// How a field entry is stored: which of its SQL attributes are written depends on its type.
#include "dparse/write/storage.h"

#include "dd/buf_storage.h"
#include "dparse/read/state.h"
#include "dparse/tokens.h"
#include "dparse/write/writer.h"

static constexpr char MODULE[] = "dparse_export";

static void put_part(dparse_out& out, int keyword, const char* text, std::string_view mark,
                     int indent) {
  if (text == nullptr) return;
  dparse_put_quoted(out, keyword, std::string(dd_buf_part(text, mark)).c_str(), indent);
}

int dparse_put_sql_names(dparse_out& out, int type_code, const char* name_text,
                         const char* storage_text, int indent) {
  switch (type_code) {
    case TAV_FLDT_ARRAY:
    case TAV_FLDT_SUBSTRUCT:
      dparse_put_quoted(out, DPARSE_KEY_SQL_TABLE, name_text, indent);
      dparse_put_quoted(out, DPARSE_KEY_SQL_STORAGE, storage_text, indent);
      return 1;
    case TAV_FLDT_BUF:
      put_part(out, DPARSE_KEY_SQL_TABLE, name_text, DD_TABLE_MARK, indent);
      put_part(out, DPARSE_KEY_SQL_COLUMN, name_text, DD_COLUMN_MARK, indent);
      dparse_put_quoted(out, DPARSE_KEY_SQL_STORAGE, storage_text, indent);
      return 1;
    default:
      if (!dd_is_field_type(type_code)) break;
      dparse_put_quoted(out, DPARSE_KEY_SQL_COLUMN, name_text, indent);
      return 1;
  }
  return dparse_export_fail_as(out, HERE, DPARSE_INTERNAL_ERROR, DPARSE_INVALID_TYPE);
}

int dparseExportClassImplFieldAttrs(FILE* stream, int type_code, const char* name_text,
                                    const char* storage_text, int indent) {
  dparse_out out(stream);
  return dparse_put_sql_names(out, type_code, name_text, storage_text, indent);
}
