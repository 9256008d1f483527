// Filling a row from the columns of a query of dm/queries.h; their number tells which query it was.
// `Columns` has count(), integer(i) and text(i), which is borrowed, and null for NULL. False where
// the columns hold what no dictionary can: NULL as a name, a number beyond 32 bits.
#ifndef DM_ROWS_H
#define DM_ROWS_H

#include "dd/database_number.h"
#include "dm/store.h"

namespace dm {

template <class Columns>
bool take_row(const Columns& columns, database_row& row) {
  const char* number = columns.text(1);
  row.id = columns.integer(0);
  row.counter = columns.integer(2);
  return number != nullptr && dd_read_database(number, row.number);
}

// Whether the number fits into 32 bits.
inline bool take_number(int64_t value, int32_t& number) {
  number = static_cast<int32_t>(value);
  return value == number;
}

template <class Columns>
bool take_row(const Columns& columns, field_row& row) {
  row.name = columns.text(0);
  if (columns.count() == 2) return take_number(columns.integer(1), row.type) && row.name != nullptr;
  row.descr = columns.text(3);
  row.stamp = columns.integer(5);
  row.key = columns.count() == 7 ? columns.text(6) : nullptr;
  return take_number(columns.integer(1), row.number) && take_number(columns.integer(2), row.type) &&
         take_number(columns.integer(4), row.flags) && row.name != nullptr;
}

template <class Columns>
bool take_row(const Columns& columns, class_row& row) {
  const bool keys = columns.count() == 4;
  row.id = columns.integer(0);
  row.key = columns.text(1);
  row.name = columns.text(2);
  row.stamp = columns.integer(3);
  row.definition = keys ? nullptr : columns.text(4);
  return row.key != nullptr && row.name != nullptr && (keys || row.definition != nullptr);
}

template <class Columns>
bool take_row(const Columns& columns, table_row& row) {
  row.key = columns.text(0);
  row.name = columns.text(1);
  row.class_id = columns.integer(2);
  return row.key != nullptr && row.name != nullptr;
}

template <class Columns>
bool take_row(const Columns& columns, journal_record& row) {
  row.number = columns.integer(0);
  row.deployment = columns.integer(1);
  row.changes = columns.integer(2);
  int column = JOURNAL_NUMBERS;
  for (const auto& each : JOURNAL_TEXTS) {
    const char* text = columns.text(column++);
    if (text == nullptr) return false;
    row.*each.text = text;
  }
  return true;
}

template <class Columns>
bool take_row(const Columns& columns, journal_part& row) {
  row.record = columns.integer(0);
  row.part = columns.integer(1);
  row.content = columns.text(2);
  return row.content != nullptr;
}

template <class Columns>
bool take_row(const Columns& columns, journal_head& row) {
  const char* hash = columns.text(1);
  const char* time = columns.text(2);
  if (hash == nullptr || time == nullptr) return false;
  row.number = columns.integer(0);
  row.hash = hash;
  row.time = time;
  return true;
}

// The one column of a query.
struct text_row {
  const char* text;
};
template <class Columns>
bool take_row(const Columns& columns, text_row& row) {
  row.text = columns.text(0);
  return row.text != nullptr;
}

}  // namespace dm

#endif
