// Type codes: what a field holds. Part of the interface: never renumber; 2, 15 and 16 are not used.
#ifndef DD_TYPES_H
#define DD_TYPES_H

// X(name, code, keyword)
#define DD_TYPES(X)                      \
  X(TAV_FLDT_UNUSED, 0, "UNUSED")        \
  X(TAV_FLDT_INT, 1, "INT")              \
  X(TAV_FLDT_ENUM, 3, "ENUM")            \
  X(TAV_FLDT_NUM, 4, "NUM")              \
  X(TAV_FLDT_STRING, 5, "STRING")        \
  X(TAV_FLDT_BUF, 6, "BUF")              \
  X(TAV_FLDT_POID, 7, "POID")            \
  X(TAV_FLDT_TIMESTAMP, 8, "TIMESTAMP")  \
  X(TAV_FLDT_ARRAY, 9, "ARRAY")          \
  X(TAV_FLDT_SUBSTRUCT, 10, "SUBSTRUCT") \
  X(TAV_FLDT_OBJ, 11, "OBJ")             \
  X(TAV_FLDT_BINSTR, 12, "BINSTR")       \
  X(TAV_FLDT_EBUF, 13, "EBUF")           \
  X(TAV_FLDT_DECIMAL, 14, "DECIMAL")     \
  X(TAV_FLDT_INT64, 17, "INT64")

#define DD_ENUM_ROW(name, code, keyword) name = code,
enum { DD_TYPES(DD_ENUM_ROW) };
#undef DD_ENUM_ROW

// The types whose fields hold entries.
static inline int dd_is_container(int code) {
  return code == TAV_FLDT_ARRAY || code == TAV_FLDT_SUBSTRUCT;
}

// The keyword of a type code; null for an unknown code.
static inline const char* dd_type_keyword(int code) {
  switch (code) {
#define DD_CASE_ROW(name, number, keyword) \
  case number:                             \
    return keyword;
    DD_TYPES(DD_CASE_ROW)
#undef DD_CASE_ROW
    default:
      return 0;
  }
}

static inline int dd_is_field_type(int code) {
  return code != TAV_FLDT_UNUSED && dd_type_keyword(code) != 0;
}

#endif
