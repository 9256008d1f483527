// The keywords of the definition language. No field can have such a name.
#ifndef DD_KEYWORDS_H
#define DD_KEYWORDS_H

#include <algorithm>
#include <string_view>

// X(name, text, number), in the order of the language's table of keywords.
// The numbers are part of the language (one message shows them): never renumber.
#define DD_KEYWORDS(X)                            \
  X(POID, "POID", 1)                              \
  X(STRING, "STRING", 2)                          \
  X(ARRAY, "ARRAY", 3)                            \
  X(SUBSTRUCT, "SUBSTRUCT", 4)                    \
  X(NUM, "NUM", 5)                                \
  X(INT, "INT", 6)                                \
  X(UINT, "UINT", 7)                              \
  X(ENUM, "ENUM", 8)                              \
  X(TIMESTAMP, "TIMESTAMP", 9)                    \
  X(BUF, "BUF", 10)                               \
  X(BINSTR, "BINSTR", 11)                         \
  X(EBUF, "EBUF", 12)                             \
  X(OBJ, "OBJ", 41)                               \
  X(LABEL, "LABEL", 13)                           \
  X(DESCR, "DESCR", 14)                           \
  X(ID, "ID", 15)                                 \
  X(LENGTH, "LENGTH", 16)                         \
  X(ORDER, "ORDER", 17)                           \
  X(CREATE, "CREATE", 18)                         \
  X(REQUIRED, "REQUIRED", 30)                     \
  X(OPTIONAL, "OPTIONAL", 31)                     \
  X(PROHIBITED, "PROHIBITED", 32)                 \
  X(SYSTEM, "SYSTEM", 33)                         \
  X(MODIFY, "MODIFY", 19)                         \
  X(WRITEABLE, "WRITEABLE", 34)                   \
  X(NOT_WRITEABLE, "NOT_WRITEABLE", 35)           \
  X(WRITABLE, "WRITABLE", 60)                     \
  X(NOT_WRITABLE, "NOT_WRITABLE", 61)             \
  X(STORABLE, "STORABLE", 20)                     \
  X(CLASS, "CLASS", 21)                           \
  X(OPEN, "{", 22)                                \
  X(CLOSE, "}", 23)                               \
  X(EQUALS, "=", 24)                              \
  X(SEMICOLON, ";", 25)                           \
  X(IMPLEMENTATION, "IMPLEMENTATION", 37)         \
  X(SQL_COLUMN, "SQL_COLUMN", 38)                 \
  X(SQL_TABLE, "SQL_TABLE", 39)                   \
  X(SQL_STORAGE, "SQL_STORAGE", 40)               \
  X(LOCATION, "LOCATION", 42)                     \
  X(ATTRVAL, "ATTRVAL", 43)                       \
  X(ATTRIBUTE, "ATTRIBUTE", 44)                   \
  X(MULTIVALUED, "MULTIVALUED", 45)               \
  X(RDN_PIECE, "RDN_PIECE", 46)                   \
  X(ENTRY_TYPE, "ENTRY_TYPE", 47)                 \
  X(SQL_COLUMN_PREFIX, "SQL_COLUMN_PREFIX", 48)   \
  X(SEQ_START, "SEQ_START", 49)                   \
  X(DECIMAL, "DECIMAL", 50)                       \
  X(READ_ACCESS, "READ_ACCESS", 51)               \
  X(WRITE_ACCESS, "WRITE_ACCESS", 52)             \
  X(CREATE_ACCESS, "CREATE_ACCESS", 62)           \
  X(SELF, "SELF", 53)                             \
  X(BRANDLINEAGE, "BRANDLINEAGE", 54)             \
  X(BRAND, "BRAND", 55)                           \
  X(ANCESTRALLINEAGE, "ANCESTRALLINEAGE", 56)     \
  X(GLOBAL, "GLOBAL", 57)                         \
  X(AUDITABLE, "AUDITABLE", 58)                   \
  X(ENCRYPTABLE, "ENCRYPTABLE", 59)               \
  X(ROOT, "ROOT", 64)                             \
  X(BRANDOWNER, "BRANDOWNER", 63)                 \
  X(ANY, "ANY", 65)                               \
  X(LINK_OBJECT, "LINK_OBJECT", 66)               \
  X(LINK_ATTRIBUTE, "LINK_ATTRIBUTE", 67)         \
  X(OBJECTCLASS, "OBJECTCLASS", 68)               \
  X(IS_PARTITIONED, "IS_PARTITIONED", 69)         \
  X(PARTITION_MODE, "PARTITION_MODE", 70)         \
  X(FINITE, "FINITE", 71)                         \
  X(HISTORIC, "HISTORIC", 72)                     \
  X(RESIDENCY_TYPE, "RESIDENCY_TYPE", 73)         \
  X(SERIALIZABLE, "SERIALIZABLE", 74)             \
  X(AUDIT_SCHEME, "AUDIT_SCHEME", 75)             \
  X(COMPACTED, "COMPACTED", 76)                   \
  X(EXPANDED, "EXPANDED", 77)                     \
  X(QUERYABLE_ON_AUDIT, "QUERYABLE_ON_AUDIT", 78) \
  X(IGNORE_ON_AUDIT, "IGNORE_ON_AUDIT", 79)       \
  X(YES, "YES", 80)                               \
  X(NO, "NO", 81)                                 \
  X(VIRTUAL_FLAG, "VIRTUAL_FLAG", 82)             \
  X(EVENT_TYPE, "EVENT_TYPE", 83)                 \
  X(INT64, "INT64", 84)

#define DD_ENUM_ROW(name, text, number) DD_KEY_##name = number,
enum dd_keyword { DD_KEY_NONE, DD_KEYWORDS(DD_ENUM_ROW) };
#undef DD_ENUM_ROW

struct dd_keyword_row {
  int number;
  std::string_view text;
};
#define DD_TABLE_ROW(name, text, number) {number, text},
inline constexpr dd_keyword_row DD_KEYWORD_TABLE[] = {DD_KEYWORDS(DD_TABLE_ROW)};
#undef DD_TABLE_ROW

// One more than the highest number of a keyword.
inline constexpr int DD_KEYWORD_NUMBERS = [] {
  int highest = 0;
  for (const dd_keyword_row& row : DD_KEYWORD_TABLE) highest = std::max(highest, row.number);
  return highest + 1;
}();

template <class Fits>
constexpr auto dd_count_keywords(Fits fits) {
  return std::count_if(std::begin(DD_KEYWORD_TABLE), std::end(DD_KEYWORD_TABLE), fits);
}

static_assert(std::ranges::all_of(DD_KEYWORD_TABLE,
                                  [](const dd_keyword_row& row) {
                                    return dd_count_keywords([&](const dd_keyword_row& other) {
                                             return other.number == row.number ||
                                                    other.text == row.text;
                                           }) == 1;
                                  }),
              "two keywords have the same number or text");

#endif
