// The attributes that a stored class definition holds, of the class and of its field entries: rows
// of dd/attributes.h, in the order in which the stored text has them.
#ifndef DM_ATTRIBUTES_H
#define DM_ATTRIBUTES_H

#include <array>

#include "dd/attributes.h"
#include "dd/vantor.h"

namespace dm {

inline constexpr auto CLASS_ATTRIBUTES = dd_attributes_in<DD_IN_ANY_CLASS>();
inline constexpr auto ENTRY_ATTRIBUTES = dd_attributes_in<DD_IN_ANY_ENTRY>();

// Whether the table of field definitions has a column for the attribute.
constexpr bool has_column(const dd_attribute& row) {
  return row.field == TAV_FLD_FIELD_NUM || row.field == TAV_FLD_DESCR;
}
static_assert(std::ranges::all_of(dd_attributes_in<DD_IN_DEFINITION>(), has_column),
              "the attribute of a field definition has no column: see tables.cpp of each engine");

// The index of a field's row. Where there is none the build fails.
template <size_t N>
consteval int row_of(const std::array<dd_attribute, N>& rows, uint32_t field) {
  int row = 0;
  while (rows.at(static_cast<size_t>(row)).field != field) ++row;
  return row;
}

// Indexes of the rows that rules look at. The other attributes are stored and given back as they
// are.
enum class_attribute {
  CLASS_NAME = row_of(CLASS_ATTRIBUTES, TAV_FLD_NAME),
  CLASS_TABLE = row_of(CLASS_ATTRIBUTES, TAV_FLD_SQL_TABLE),
  CLASS_STORAGE = row_of(CLASS_ATTRIBUTES, TAV_FLD_SQL_STORAGE)
};
enum entry_attribute {
  ENTRY_NAME = row_of(ENTRY_ATTRIBUTES, TAV_FLD_FIELD_NAME),
  ENTRY_TYPE = row_of(ENTRY_ATTRIBUTES, TAV_FLD_FIELD_TYPE),
  ENTRY_SQL_NAME = row_of(ENTRY_ATTRIBUTES, TAV_FLD_SQL_TABLE),
  ENTRY_STORAGE = row_of(ENTRY_ATTRIBUTES, TAV_FLD_SQL_STORAGE),
  ENTRY_CREATE = row_of(ENTRY_ATTRIBUTES, TAV_FLD_CREATE_PERMISSION),
  ENTRY_MODIFY = row_of(ENTRY_ATTRIBUTES, TAV_FLD_MODIFY_PERMISSION)
};

// The key under which a class and a container entry hold their entries.
inline constexpr char ENTRIES_KEY[] = "entries";
static_assert(std::ranges::find(DD_ATTRIBUTES, ENTRIES_KEY, &dd_attribute::key) ==
                  DD_ATTRIBUTES.end(),
              "an attribute has the key of the entries");

}  // namespace dm

#endif
