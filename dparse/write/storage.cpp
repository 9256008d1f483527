// How a field entry is stored: which of its SQL attributes are written depends on its type.
#include <string>

#include "dd/buf_storage.h"
#include "dparse/failures.h"
#include "dparse/tokens.h"
#include "dparse/write/forms.h"
#include "dparse/write/writer.h"

static constexpr char MODULE[] = "dparse_export";

namespace dparse {

static void write_part(write_state& writing, int keyword, const char* text, std::string_view mark) {
  if (text == nullptr) return;
  write_quoted(writing, keyword, std::string(dd_buf_part(text, mark)).c_str());
}

int write_sql_names(write_state& writing, int type_code, const char* name_text,
                    const char* storage_text) {
  switch (type_code) {
    case TAV_FLDT_ARRAY:
    case TAV_FLDT_SUBSTRUCT:
      write_quoted(writing, DPARSE_KEY_SQL_TABLE, name_text);
      write_quoted(writing, DPARSE_KEY_SQL_STORAGE, storage_text);
      return 1;
    case TAV_FLDT_BUF:
      write_part(writing, DPARSE_KEY_SQL_TABLE, name_text, DD_TABLE_MARK);
      write_part(writing, DPARSE_KEY_SQL_COLUMN, name_text, DD_COLUMN_MARK);
      write_quoted(writing, DPARSE_KEY_SQL_STORAGE, storage_text);
      return 1;
    default:
      if (!dd_is_field_type(type_code)) break;
      write_quoted(writing, DPARSE_KEY_SQL_COLUMN, name_text);
      return 1;
  }
  return export_fail_as(writing.out, HERE, INTERNAL_ERROR_TEXT, INVALID_TYPE_TEXT);
}

}  // namespace dparse

int dparseExportClassImplFieldAttrs(FILE* stream, int type_code, const char* name_text,
                                    const char* storage_text, int indent) {
  dparse::output out(stream);
  dparse::write_state writing{out, nullptr, indent, nullptr};
  return dparse::write_sql_names(writing, type_code, name_text, storage_text);
}
