#include "dparse/write/forms.h"

#include <algorithm>

#include "dparse/class_names.h"

static constexpr char MODULE[] = "dparse_export";

namespace dparse {

static const char* text(const void* value) {
  return value != nullptr ? static_cast<const char*>(value) : "";
}

static int32_t number(const void* value, int32_t missing = 0) {
  return value != nullptr ? *static_cast<const int32_t*>(value) : missing;
}

static void begin(const write_state& writing, int keyword) {
  if (writing.only == 0) begin_line(writing.out, keyword, writing.indent);
}

static void end(const write_state& writing) {
  if (writing.only == 0) end_line(writing.out);
}

static void put_bare(write_state& writing, const attribute& row, std::string_view value) {
  begin(writing, row.token);
  put(writing.out, value);
  end(writing);
}

static void put_bare_number(write_state& writing, const attribute& row, int32_t value) {
  begin(writing, row.token);
  put_number(writing.out, value);
  end(writing);
}

static void put_quoted_number(write_state& writing, const attribute& row, int32_t value) {
  begin(writing, row.token);
  put(writing.out, "\"");
  put_number(writing.out, value);
  put(writing.out, "\"");
  end(writing);
}

void write_quoted(write_state& writing, int keyword, const char* value) {
  if (value == nullptr || value[0] == '\0') return;
  if (writing.only != 0 && writing.only != keyword) return;
  begin(writing, keyword);
  put_quoted(writing.out, value);
  end(writing);
}

void write_text(write_state& writing, const attribute& row, const void* value) {
  write_quoted(writing, row.token, text(value));
}

void write_bare_text(write_state& writing, const attribute& row, const void* value) {
  if (text(value)[0] != '\0') put_bare(writing, row, text(value));
}

void write_quoted_number(write_state& writing, const attribute& row, const void* value) {
  if (number(value, -1) != -1) put_quoted_number(writing, row, number(value));
}

void write_seq_start(write_state& writing, const attribute& row, const void* value) {
  if (dparseIsTopLevelClass(writing.name)) put_quoted_number(writing, row, number(value));
}

void write_number(write_state& writing, const attribute& row, const void* value) {
  put_bare_number(writing, row, number(value));
}

void write_number_above_none(write_state& writing, const attribute& row, const void* value) {
  if (number(value) != 0) put_bare_number(writing, row, number(value));
}

void write_yes(write_state& writing, const attribute& row, const void* value) {
  if (number(value) != 0) put_bare(writing, row, keyword_text(DPARSE_KEY_YES));
}

// The buffer holds every order that the reader accepts.
void write_order(write_state& writing, const attribute& row, const void* value) {
  char digits[TEXT_SIZE];
  tav_decimal_to_str(static_cast<const tav_decimal_t*>(value), 0, digits, sizeof digits,
                     at(writing.ebuf, HERE));
  if (!dd_failed(*writing.ebuf)) put_bare(writing, row, digits);
}

// Of rows that share a field only the first is written, and the value is fetched once.
static bool has_field(const attribute_place& place, uint32_t field) {
  return std::any_of(place.rows, place.rows + place.count,
                     [field](const attribute* row) { return row->field == field; });
}

static bool is_decimal(uint32_t field) {
  return DD_FIELD_ID_TYPE(field) == TAV_FLDT_DECIMAL;
}

const void* value_or_zero(const void* value, uint32_t field, dd_decimal& zero, tav_ebuf* ebuf) {
  if (value != nullptr || !is_decimal(field)) return value;
  zero.reset(tav_decimal_alloc_result_zero(at(ebuf, HERE)));
  return zero.get();
}

attribute_place::attribute_place(unsigned in) : context(in) {
  for (const attribute& row : attributes()) {
    if ((row.read_in & in) == 0 || has_field(*this, row.field)) continue;
    optional[count] = !row.form->required;
    if (is_decimal(row.field)) decimal = count;
    rows[count++] = &row;
  }
}

void get_values(attribute_values& values, tav_flist_t* element, const attribute_place& place,
                tav_ebuf* ebuf) {
  for (size_t i = 0; i < place.count; ++i)
    values.by_row[i] =
        tavi_flist_get(element, place.rows[i]->field, 0, place.optional[i], 0, at(ebuf, HERE));
  if (place.decimal == attribute_place::ROOM) return;
  const void*& decimal = values.by_row[place.decimal];
  decimal = value_or_zero(decimal, place.rows[place.decimal]->field, values.zero, ebuf);
}

void write_values(write_state& writing, const attribute_values& values,
                  const attribute_place& place) {
  for (size_t i = 0; i < place.count; ++i) {
    const attribute& row = *place.rows[i];
    if ((row.written_in & place.context) != 0) row.form->write(writing, row, values.by_row[i]);
    if (dd_failed(*writing.ebuf)) return;
  }
}

std::string value_text(const attribute& row, const void* value, const char* name,
                       int32_t entry_type, tav_ebuf* ebuf) {
  output out(nullptr);
  write_state writing{out, name, 0, ebuf, row.token};
  if (entry_type != TAV_FLDT_UNUSED && row.field == TAV_FLD_SQL_TABLE) {
    write_sql_names(writing, entry_type, text(value), nullptr);
  } else if (row.form->write != nullptr) {
    row.form->write(writing, row, value);
  }
  return std::string(gathered_text(out));
}

}  // namespace dparse
