// The values of implementation blocks that are more than a text or a number.
#include "dd/values.h"
#include "dparse/buf_storage.h"
#include "dparse/read/element.h"
#include "dparse/read/forms.h"
#include "dparse/read/state.h"
#include "dparse/read/values.h"

static constexpr char MODULE[] = "dparse";

using dparse::message;

static constexpr int SQL_NAME_LENGTH = 30;  // bytes

static int read_name(FILE* stream, const dparse_attribute& row, dparse_token& name) {
  if (dparse_read_string(stream, name) < 1) return -1;
  const int length = static_cast<int>(name.length);
  if (length <= SQL_NAME_LENGTH) return 1;
  return dparse::fail_with(HERE, row.refused, {name.text, length, SQL_NAME_LENGTH});
}

static int store_both(dparse_element& element, uint32_t field, std::string_view column,
                      std::string_view table) {
  char text[DPARSE_TEXT_SIZE + 8];
  tav_snprintf(text, sizeof text, "C=%.*s T=%.*s", static_cast<int>(column.size()), column.data(),
               static_cast<int>(table.size()), table.data());
  return dparse_store_text(element, field, text);
}

// What the element holds already, or null with the failure recorded.
static const char* held_text(dparse_element& element, uint32_t field) {
  tav_ebuf ebuf{};
  const char* text = dd_text(element.list, field, at(&ebuf, HERE));
  return dparse::done(HERE, ebuf) < 1 ? nullptr : text;
}

int dparse_read_table(FILE* stream, dparse_element& element, const dparse_attribute& row) {
  dparse_token name;
  if (read_name(stream, row, name) < 1) return -1;
  if (element.type != TAV_FLDT_BUF) return dparse_store_text(element, row.field, name.text);
  const char* text = held_text(element, row.field);
  if (text == nullptr) return -1;
  return store_both(element, row.field, dparse_sql_part(text, DPARSE_COLUMN_MARK), name.text);
}

int dparse_read_column(FILE* stream, dparse_element& element, const dparse_attribute& row) {
  dparse_token name;
  if (read_name(stream, row, name) < 1) return -1;
  if (element.type != TAV_FLDT_BUF) return dparse_store_text(element, row.field, name.text);
  const char* text = held_text(element, row.field);
  if (text == nullptr) return -1;
  return store_both(element, row.field, name.text, dparse_sql_part(text, DPARSE_TABLE_MARK));
}

int dparse_read_attrval(FILE* stream, dparse_element& element, const dparse_attribute& row) {
  dparse_token value;
  if (dparse_read_string(stream, value) < 1) return -1;
  return dparse_store_element(element, TAV_FLD_ATTRVALS, row.field, value.text);
}

int dparse_read_objectclass(FILE* stream, dparse_element& element, const dparse_attribute& row) {
  dparse_token value;
  if (dparse_read_string(stream, value) < 1) return -1;
  tav_ebuf ebuf{};
  const int held = tav_flist_elem_count(element.list, TAV_FLD_OBJECTCLASSES, at(&ebuf, HERE));
  if (dparse::done(HERE, ebuf) < 1) return -1;
  if (held > 0) return dparse::fail_with(HERE, row.refused, {held + 1});
  return dparse_store_element(element, TAV_FLD_OBJECTCLASSES, row.field, value.text);
}
