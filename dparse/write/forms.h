// Writing the values of attributes, form by form. Each writes the attribute's line where the value
// (null: absent) calls for one. A decimal is not null: dparse_or_zero.
#ifndef DPARSE_WRITE_FORMS_H
#define DPARSE_WRITE_FORMS_H

#include <algorithm>
#include <string>

#include "dd/owners.h"
#include "dparse/attributes.h"
#include "dparse/write/out.h"

struct dparse_writing {
  dparse_out& out;
  const char* name;  // of what the attributes belong to
  int indent;
  tav_ebuf* ebuf;
  int only = 0;  // the keyword of which the value alone is written; 0: lines, of all keywords
};

using dparse_writer = void(dparse_writing& writing, const dparse_attribute& row, const void* value);

dparse_writer dparse_write_text;               // "text", unless empty
dparse_writer dparse_write_bare_text;          // text, unless empty
dparse_writer dparse_write_quoted_number;      // "7", unless -1
dparse_writer dparse_write_seq_start;          // "7", always, in a top-level class
dparse_writer dparse_write_number;             // 7, always
dparse_writer dparse_write_number_above_none;  // 7, unless 0
dparse_writer dparse_write_yes;                // YES, unless 0
dparse_writer dparse_write_order;              // 1.5, always

// The attributes that may stand in one place, in the order in which they are written. Those that
// share a field are there once.
struct dparse_place {
  static constexpr size_t ROOM = std::max(dd_attributes_in<DD_IN_ANY_CLASS>().size(),
                                          dd_attributes_in<DD_IN_ANY_ENTRY>().size());
  const dparse_attribute* rows[ROOM];
  int32_t optional[ROOM];  // of each row: whether its value may be absent
  size_t count = 0;
  size_t decimal = ROOM;  // the row of the one that is a decimal, ROOM for none
  unsigned context;

  explicit dparse_place(unsigned in);
};

// The value, or a zero, owned there, for a decimal that is absent (a failure is in the buffer).
const void* dparse_or_zero(const void* value, uint32_t field, dd_decimal& zero, tav_ebuf* ebuf);

// The values of an element's attributes, in the order of its place; borrowed, null where absent and
// no decimal.
struct dparse_values {
  const void* by_row[dparse_place::ROOM];
  dd_decimal zero;
};

// Gets all values that may stand in that place (a failure is in the buffer), so that a list which
// cannot be read stops the export before the element's first line.
void dparse_get_values(dparse_values& values, tav_flist_t* element, const dparse_place& place,
                       tav_ebuf* ebuf);
// Writes those that are written in that place, up to one that fails.
void dparse_write_values(dparse_writing& writing, const dparse_values& values,
                         const dparse_place& place);

// The value alone, as the attribute's line shows it; empty where no line is written. `name` is what
// the attribute belongs to. The SQL names of a field entry depend on its type; for others that is
// TAV_FLDT_UNUSED.
std::string dparse_value_text(const dparse_attribute& row, const void* value, const char* name,
                              int32_t entry_type, tav_ebuf* ebuf);

// KEYWORD = "value";  Nothing for a value that is null or empty.
void dparse_write_quoted(dparse_writing& writing, int keyword, const char* value);
// How a field entry of that type is stored: see dparseExportClassImplFieldAttrs.
int dparse_write_sql_names(dparse_writing& writing, int type_code, const char* name_text,
                           const char* storage_text);

#endif
