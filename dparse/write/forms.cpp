#include "dparse/write/forms.h"

#include <algorithm>

#include "dparse/class_names.h"

static constexpr char MODULE[] = "dparse_export";

static const char* text(const void* value) {
  return value != nullptr ? static_cast<const char*>(value) : "";
}

static int32_t number(const void* value, int32_t missing = 0) {
  return value != nullptr ? *static_cast<const int32_t*>(value) : missing;
}

static void begin(const dparse_writing& writing, int keyword) {
  if (writing.only == 0) dparse_begin_line(writing.out, keyword, writing.indent);
}

static void end(const dparse_writing& writing) {
  if (writing.only == 0) dparse_end_line(writing.out);
}

static void put_bare(dparse_writing& writing, const dparse_attribute& row, std::string_view value) {
  begin(writing, row.token);
  dparse_put(writing.out, value);
  end(writing);
}

static void put_bare_number(dparse_writing& writing, const dparse_attribute& row, int32_t value) {
  begin(writing, row.token);
  dparse_put_number(writing.out, value);
  end(writing);
}

static void put_quoted_number(dparse_writing& writing, const dparse_attribute& row, int32_t value) {
  begin(writing, row.token);
  dparse_put(writing.out, "\"");
  dparse_put_number(writing.out, value);
  dparse_put(writing.out, "\"");
  end(writing);
}

void dparse_write_quoted(dparse_writing& writing, int keyword, const char* value) {
  if (value == nullptr || value[0] == '\0') return;
  if (writing.only != 0 && writing.only != keyword) return;
  begin(writing, keyword);
  dparse_put_quoted(writing.out, value);
  end(writing);
}

void dparse_write_text(dparse_writing& writing, const dparse_attribute& row, const void* value) {
  dparse_write_quoted(writing, row.token, text(value));
}

void dparse_write_bare_text(dparse_writing& writing, const dparse_attribute& row,
                            const void* value) {
  if (text(value)[0] != '\0') put_bare(writing, row, text(value));
}

void dparse_write_quoted_number(dparse_writing& writing, const dparse_attribute& row,
                                const void* value) {
  if (number(value, -1) != -1) put_quoted_number(writing, row, number(value));
}

void dparse_write_seq_start(dparse_writing& writing, const dparse_attribute& row,
                            const void* value) {
  if (dparseIsTopLevelClass(writing.name)) put_quoted_number(writing, row, number(value));
}

void dparse_write_number(dparse_writing& writing, const dparse_attribute& row, const void* value) {
  put_bare_number(writing, row, number(value));
}

void dparse_write_number_above_none(dparse_writing& writing, const dparse_attribute& row,
                                    const void* value) {
  if (number(value) != 0) put_bare_number(writing, row, number(value));
}

void dparse_write_yes(dparse_writing& writing, const dparse_attribute& row, const void* value) {
  if (number(value) != 0) put_bare(writing, row, dparse_keyword_text(DPARSE_KEY_YES));
}

// The buffer holds every order that the reader accepts.
void dparse_write_order(dparse_writing& writing, const dparse_attribute& row, const void* value) {
  char digits[DPARSE_TEXT_SIZE];
  tav_decimal_to_str(static_cast<const tav_decimal_t*>(value), 0, digits, sizeof digits,
                     at(writing.ebuf, HERE));
  if (!dd_failed(*writing.ebuf)) put_bare(writing, row, digits);
}

// Of rows that share a field only the first is written, and the value is fetched once.
static bool has_field(const dparse_place& place, uint32_t field) {
  return std::any_of(place.rows, place.rows + place.count,
                     [field](const dparse_attribute* row) { return row->field == field; });
}

static bool is_decimal(uint32_t field) {
  return DD_FIELD_ID_TYPE(field) == TAV_FLDT_DECIMAL;
}

const void* dparse_or_zero(const void* value, uint32_t field, dd_decimal& zero, tav_ebuf* ebuf) {
  if (value != nullptr || !is_decimal(field)) return value;
  zero.reset(tav_decimal_alloc_result_zero(at(ebuf, HERE)));
  return zero.get();
}

dparse_place::dparse_place(unsigned in) : context(in) {
  for (const dparse_attribute& row : dparse_attributes()) {
    if ((row.read_in & in) == 0 || has_field(*this, row.field)) continue;
    optional[count] = !row.form->required;
    if (is_decimal(row.field)) decimal = count;
    rows[count++] = &row;
  }
}

void dparse_get_values(dparse_values& values, tav_flist_t* element, const dparse_place& place,
                       tav_ebuf* ebuf) {
  for (size_t i = 0; i < place.count; ++i)
    values.by_row[i] =
        tavi_flist_get(element, place.rows[i]->field, 0, place.optional[i], 0, at(ebuf, HERE));
  if (place.decimal == dparse_place::ROOM) return;
  const void*& decimal = values.by_row[place.decimal];
  decimal = dparse_or_zero(decimal, place.rows[place.decimal]->field, values.zero, ebuf);
}

void dparse_write_values(dparse_writing& writing, const dparse_values& values,
                         const dparse_place& place) {
  for (size_t i = 0; i < place.count; ++i) {
    const dparse_attribute& row = *place.rows[i];
    if ((row.written_in & place.context) != 0) row.form->write(writing, row, values.by_row[i]);
    if (dd_failed(*writing.ebuf)) return;
  }
}

std::string dparse_value_text(const dparse_attribute& row, const void* value, const char* name,
                              int32_t entry_type, tav_ebuf* ebuf) {
  dparse_out out(nullptr);
  dparse_writing writing{out, name, 0, ebuf, row.token};
  if (entry_type != TAV_FLDT_UNUSED && row.field == TAV_FLD_SQL_TABLE) {
    dparse_write_sql_names(writing, entry_type, text(value), nullptr);
  } else if (row.form->write != nullptr) {
    row.form->write(writing, row, value);
  }
  return std::string(dparse_gathered(out));
}
