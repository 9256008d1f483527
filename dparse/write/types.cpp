#include "dparse/write/types.h"

#include "dd/report.h"
#include "dd/values.h"
#include "dparse/failures.h"
#include "dparse/write/writer.h"

static constexpr char MODULE[] = "dparse_export";

namespace dparse {

// Says what is wrong with a name; gives -1.
static int name_failed(output& out, dd_site site, const char* text, const char* name,
                       const char* record) {
  flush(out);
  dd_print_error(text, name);
  dd_log(site, record);
  return -1;
}

int find_type(output& out, dd_list* field_list, const char* field_name) {
  if (field_list == nullptr || field_name == nullptr)
    return export_fail_as(out, HERE, INTERNAL_ERROR_TEXT, "null pointer");
  tav_ebuf ebuf{};
  tav_flist_t* found = field_list->find(field_name, at(&ebuf, HERE));
  if (dd_failed(ebuf)) return export_list_failed(out, HERE, ebuf);
  if (found == nullptr)
    return name_failed(out, HERE, "UKNOWN FIELD NAME: %s\n", field_name, "Unknown field name");
  const int32_t* type = dd_int_or_null(found, TAV_FLD_FIELD_TYPE, at(&ebuf, HERE));
  if (type != nullptr) return *type;
  return name_failed(out, HERE, "MISSING FIELD TYPE FOR FIELD: %s\n", field_name,
                     "Missing field type for field");
}

static int put_type(output& out, int type_code) {
  const char* keyword = dd_type_keyword(type_code);
  if (keyword != nullptr) {
    put(out, keyword);
    return 1;
  }
  static constexpr char UNKNOWN[] = "UNKNOWN FIELD TYPE: %d\n";
  char line[sizeof UNKNOWN + 16];
  tav_snprintf(line, sizeof line, UNKNOWN, type_code);
  put(out, line);
  flush(out);
  dd_print_error_text(line);
  dd_log(HERE, "Unknown field type");
  return -1;
}

int put_head(output& out, int type_code, const char* name) {
  if (put_type(out, type_code) < 1)
    return export_fail(out, HERE, "Error: Unable to export field type");
  put(out, " ");
  put(out, name);
  put(out, " {\n\n");
  return 1;
}

}  // namespace dparse

int dparseGetTypeFromField(dd_list* field_list, const char* field_name) {
  dparse::output none(nullptr);
  return dparse::find_type(none, field_list, field_name);
}

int dparseExportFieldType(FILE* stream, int type_code) {
  dparse::output out(stream);
  return dparse::put_type(out, type_code);
}
