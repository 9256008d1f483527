// The storage text of a BUF entry: its column and its table in one, "C=column T=table".
//
// Such a text is taken apart by two rules, which differ where the column stands behind the table.
// Both are deliberate:
// - dd_split_buf, for whoever judges a definition: the column is sought only in what ends with the
//   table, so that in "T=table C=column" it is missing.
// - dd_buf_part, for reader and writer of the language: each part is sought in the whole text.
#ifndef DD_BUF_STORAGE_H
#define DD_BUF_STORAGE_H

#include <string_view>

#include "dd/vantor.h"

inline constexpr std::string_view DD_COLUMN_MARK = "C=";
inline constexpr std::string_view DD_TABLE_MARK = "T=";

// Cut where the buffer ends.
inline void dd_write_buf_storage(char* text, size_t size, std::string_view column,
                                 std::string_view table) {
  tav_snprintf(text, size, "C=%.*s T=%.*s", static_cast<int>(column.size()), column.data(),
               static_cast<int>(table.size()), table.data());
}

// What follows the first such mark, up to the next blank; empty without one, and then its data()
// is null.
inline std::string_view dd_buf_part(std::string_view text, std::string_view mark) {
  const size_t found = text.find(mark);
  if (found == text.npos) return {};
  text.remove_prefix(found + mark.size());
  return text.substr(0, text.find(' '));
}

struct dd_buf_storage {
  std::string_view column;
  std::string_view table;
};

inline dd_buf_storage dd_split_buf(std::string_view text) {
  const std::string_view table = dd_buf_part(text, DD_TABLE_MARK);
  if (table.data() != nullptr) {
    text = text.substr(0, static_cast<size_t>(table.data() - text.data()) + table.size());
  }
  return {dd_buf_part(text, DD_COLUMN_MARK), table};
}

#endif
