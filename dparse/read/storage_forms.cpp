// The values of implementation blocks that are more than a text or a number.
#include "dd/buf_storage.h"
#include "dd/longest_text.h"
#include "dd/values.h"
#include "dparse/read/element.h"
#include "dparse/read/forms.h"
#include "dparse/read/state.h"
#include "dparse/read/values.h"

static constexpr char MODULE[] = "dparse";

namespace dparse {

static constexpr int SQL_NAME_LENGTH = DD_LONGEST_STORAGE_NAME;

static int read_name(FILE* stream, const attribute& row, token_text& name) {
  if (read_string(stream, name) < 1) return -1;
  const int length = static_cast<int>(name.length);
  if (length <= SQL_NAME_LENGTH) return 1;
  return fail_with(HERE, row.refused, {name.text, length, SQL_NAME_LENGTH});
}

static int store_both(target_element& element, uint32_t field, std::string_view column,
                      std::string_view table) {
  char text[TEXT_SIZE + 8];
  dd_write_buf_storage(text, sizeof text, column, table);
  return store_text(element, field, text);
}

// What the element holds already, or null with the failure recorded.
static const char* held_text(target_element& element, uint32_t field) {
  tav_ebuf ebuf{};
  const char* text = dd_text(element.list, field, at(&ebuf, HERE));
  return done(HERE, ebuf) < 1 ? nullptr : text;
}

int read_table(FILE* stream, target_element& element, const attribute& row) {
  token_text name;
  if (read_name(stream, row, name) < 1) return -1;
  if (element.type != TAV_FLDT_BUF) return store_text(element, row.field, name.text);
  const char* text = held_text(element, row.field);
  if (text == nullptr) return -1;
  return store_both(element, row.field, dd_buf_part(text, DD_COLUMN_MARK), name.text);
}

int read_column(FILE* stream, target_element& element, const attribute& row) {
  token_text name;
  if (read_name(stream, row, name) < 1) return -1;
  if (element.type != TAV_FLDT_BUF) return store_text(element, row.field, name.text);
  const char* text = held_text(element, row.field);
  if (text == nullptr) return -1;
  return store_both(element, row.field, name.text, dd_buf_part(text, DD_TABLE_MARK));
}

int read_attrval(FILE* stream, target_element& element, const attribute& row) {
  token_text value;
  if (read_string(stream, value) < 1) return -1;
  return store_element(element, TAV_FLD_ATTRVALS, row.field, value.text);
}

int read_objectclass(FILE* stream, target_element& element, const attribute& row) {
  token_text value;
  if (read_string(stream, value) < 1) return -1;
  tav_ebuf ebuf{};
  const int held = tav_flist_elem_count(element.list, TAV_FLD_OBJECTCLASSES, at(&ebuf, HERE));
  if (done(HERE, ebuf) < 1) return -1;
  if (held > 0) return fail_with(HERE, row.refused, {held + 1});
  return store_element(element, TAV_FLD_OBJECTCLASSES, row.field, value.text);
}

}  // namespace dparse
