// Tokens of the definition language: their numbers, and the keywords.
#ifndef DPARSE_TOKENS_H
#define DPARSE_TOKENS_H

#include <cstddef>
#include <cstdint>
#include <string_view>

// X(name, text, number) in stored order; no two texts are alike.
// The numbers are part of the language (one message shows them): never renumber.
#define DPARSE_KEYWORDS(X)                        \
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

#define DPARSE_ENUM_ROW(name, text, number) DPARSE_KEY_##name = number,
enum { DPARSE_KEYWORDS(DPARSE_ENUM_ROW) };
#undef DPARSE_ENUM_ROW

// The tokens that have no keyword.
enum {
  DPARSE_TOKEN_EMPTY = 0,        // a word without a character: a NUL byte stands there
  DPARSE_TOKEN_WORD = 26,        // a word that is no keyword
  DPARSE_TOKEN_EOF = 27,         // end of input
  DPARSE_TOKEN_BAD_STRING = 28,  // a quoted string that is not closed, or too long
  DPARSE_TOKEN_STRING = 29,      // a quoted string
};
enum { DPARSE_TOKEN_NUMBERS = 85 };  // all token numbers are below

inline constexpr size_t DPARSE_KEYWORD_SIZE = 24;  // holds every keyword

struct dparse_token_row {
  int number;
  const char* text;
};
// The keywords in stored order, ended by a row {0, null}.
extern const dparse_token_row token_table[];

// The number of the keyword that equals the word without regard to case, or DPARSE_TOKEN_WORD.
// Costs about one comparison.
int dparse_keyword(const char* word, size_t length);
// The same for a word of at least one character, terminated, in a buffer of DPARSE_KEYWORD_SIZE or
// more.
int dparse_padded_keyword(const char* word, size_t length);
// The text of a keyword; empty for other tokens.
std::string_view dparse_keyword_text(int token);
// The type code that a type keyword stands for; TAV_FLDT_UNUSED for UINT and for all that is no
// type.
int32_t dparse_type_code(int token);

#endif
