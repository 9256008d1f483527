// The storage text of a BUF field: its column and its table in one, "C=column T=table".
#ifndef DPARSE_BUF_STORAGE_H
#define DPARSE_BUF_STORAGE_H

#include <string_view>

inline constexpr std::string_view DPARSE_COLUMN_MARK = "C=";
inline constexpr std::string_view DPARSE_TABLE_MARK = "T=";

// What follows the first such mark in the whole text, up to the next blank; empty without one. The
// two parts are found independently of each other.
inline std::string_view dparse_sql_part(std::string_view text, std::string_view mark) {
  const size_t found = text.find(mark);
  if (found == text.npos) return {};
  text.remove_prefix(found + mark.size());
  return text.substr(0, text.find(' '));
}

#endif
