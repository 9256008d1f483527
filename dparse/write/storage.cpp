// How a field entry is stored: which of its SQL attributes are written depends on its type.
#include <string>

#include "dparse/buf_storage.h"
#include "dparse/failures.h"
#include "dparse/tokens.h"
#include "dparse/write/forms.h"
#include "dparse/write/writer.h"

static constexpr char MODULE[] = "dparse_export";

static void write_part(dparse_writing& writing, int keyword, const char* text,
                       std::string_view mark) {
  if (text == nullptr) return;
  dparse_write_quoted(writing, keyword, std::string(dparse_sql_part(text, mark)).c_str());
}

int dparse_write_sql_names(dparse_writing& writing, int type_code, const char* name_text,
                           const char* storage_text) {
  switch (type_code) {
    case TAV_FLDT_ARRAY:
    case TAV_FLDT_SUBSTRUCT:
      dparse_write_quoted(writing, DPARSE_KEY_SQL_TABLE, name_text);
      dparse_write_quoted(writing, DPARSE_KEY_SQL_STORAGE, storage_text);
      return 1;
    case TAV_FLDT_BUF:
      write_part(writing, DPARSE_KEY_SQL_TABLE, name_text, DPARSE_TABLE_MARK);
      write_part(writing, DPARSE_KEY_SQL_COLUMN, name_text, DPARSE_COLUMN_MARK);
      dparse_write_quoted(writing, DPARSE_KEY_SQL_STORAGE, storage_text);
      return 1;
    default:
      if (type_code == TAV_FLDT_UNUSED || dd_type_keyword(type_code) == nullptr) break;
      dparse_write_quoted(writing, DPARSE_KEY_SQL_COLUMN, name_text);
      return 1;
  }
  return dparse_export_fail_as(writing.out, HERE, dparse::INTERNAL_ERROR_TEXT,
                               dparse::INVALID_TYPE_TEXT);
}

int dparseExportClassImplFieldAttrs(FILE* stream, int type_code, const char* name_text,
                                    const char* storage_text, int indent) {
  dparse_out out(stream);
  dparse_writing writing{out, nullptr, indent, nullptr};
  return dparse_write_sql_names(writing, type_code, name_text, storage_text);
}
