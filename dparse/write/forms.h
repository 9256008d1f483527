// Writing the values of attributes, form by form. Each writes the attribute's line where the value
// (null: absent) calls for one. A decimal is not null: value_or_zero.
#ifndef DPARSE_WRITE_FORMS_H
#define DPARSE_WRITE_FORMS_H

#include <algorithm>
#include <string>

#include "dd/owners.h"
#include "dparse/attributes.h"
#include "dparse/write/out.h"

namespace dparse {

struct write_state {
  output& out;
  const char* name;  // of what the attributes belong to
  int indent;
  tav_ebuf* ebuf;
  int only = 0;  // the keyword of which the value alone is written; 0: lines, of all keywords
};

using value_writer = void(write_state& writing, const attribute& row, const void* value);

value_writer write_text;               // "text", unless empty
value_writer write_bare_text;          // text, unless empty
value_writer write_quoted_number;      // "7", unless -1
value_writer write_seq_start;          // "7", always, in a top-level class
value_writer write_number;             // 7, always
value_writer write_number_above_none;  // 7, unless 0
value_writer write_yes;                // YES, unless 0
value_writer write_order;              // 1.5, always

// The attributes that may stand in one place, in the order in which they are written. Those that
// share a field are there once.
struct attribute_place {
  static constexpr size_t ROOM = std::max(dd_attributes_in<DD_IN_ANY_CLASS>().size(),
                                          dd_attributes_in<DD_IN_ANY_ENTRY>().size());
  const attribute* rows[ROOM];
  int32_t optional[ROOM];  // of each row: whether its value may be absent
  size_t count = 0;
  size_t decimal = ROOM;  // the row of the one that is a decimal, ROOM for none
  unsigned context;

  explicit attribute_place(unsigned in);
};

// The value, or a zero, owned there, for a decimal that is absent (a failure is in the buffer).
const void* value_or_zero(const void* value, uint32_t field, dd_decimal& zero, tav_ebuf* ebuf);

// The values of an element's attributes, in the order of its place; borrowed, null where absent and
// no decimal.
struct attribute_values {
  const void* by_row[attribute_place::ROOM];
  dd_decimal zero;
};

// Gets all values that may stand in that place (a failure is in the buffer), so that a list which
// cannot be read stops the export before the element's first line.
void get_values(attribute_values& values, tav_flist_t* element, const attribute_place& place,
                tav_ebuf* ebuf);
// Writes those that are written in that place, up to one that fails.
void write_values(write_state& writing, const attribute_values& values,
                  const attribute_place& place);

// The value alone, as the attribute's line shows it; empty where no line is written. `name` is what
// the attribute belongs to. The SQL names of a field entry depend on its type; for others that is
// TAV_FLDT_UNUSED.
std::string value_text(const attribute& row, const void* value, const char* name,
                       int32_t entry_type, tav_ebuf* ebuf);

// KEYWORD = "value";  Nothing for a value that is null or empty.
void write_quoted(write_state& writing, int keyword, const char* value);
// How a field entry of that type is stored: see dparseExportClassImplFieldAttrs.
int write_sql_names(write_state& writing, int type_code, const char* name_text,
                    const char* storage_text);

}  // namespace dparse

#endif
