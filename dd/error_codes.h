// Where an error arose and what it was. Part of the interface: never renumber.
#ifndef DD_ERROR_CODES_H
#define DD_ERROR_CODES_H

// X(name, number, text); the texts are what error displays show.
#define DD_ERROR_LOCATIONS(X)                            \
  X(TAV_ERRLOC_NONE, 0, "TAV_ERRLOC_NONE")               \
  X(TAV_ERRLOC_APPLICATION, 1, "TAV_ERRLOC_APPLICATION") \
  X(TAV_ERRLOC_LIST, 2, "TAV_ERRLOC_LIST")               \
  X(TAV_ERRLOC_CONNECTION, 3, "TAV_ERRLOC_CONNECTION")   \
  X(TAV_ERRLOC_DM, 4, "TAV_ERRLOC_DM")                   \
  X(TAV_ERRLOC_CM, 5, "TAV_ERRLOC_CM")

#define DD_ERROR_CLASSES(X)                          \
  X(TAV_ERRCLASS_NONE, 0, "TAV_ERRCLASS_NONE")       \
  X(TAV_ERRCLASS_REQUEST, 1, "TAV_ERRCLASS_REQUEST") \
  X(TAV_ERRCLASS_SYSTEM, 2, "TAV_ERRCLASS_SYSTEM")

#define DD_ERROR_CODES(X)                                     \
  X(TAV_ERR_NONE, 0, "TAV_ERR_NONE")                          \
  X(TAV_ERR_NO_MEM, 1, "TAV_ERR_NO_MEM")                      \
  X(TAV_ERR_BAD_ARG, 2, "TAV_ERR_BAD_ARG")                    \
  X(TAV_ERR_NOT_FOUND, 3, "TAV_ERR_NOT_FOUND")                \
  X(TAV_ERR_BAD_VALUE, 4, "TAV_ERR_BAD_VALUE")                \
  X(TAV_ERR_MISSING_FIELD, 5, "TAV_ERR_MISSING_FIELD")        \
  X(TAV_ERR_WRONG_TYPE, 6, "TAV_ERR_WRONG_TYPE")              \
  X(TAV_ERR_BUSY, 7, "TAV_ERR_BUSY")                          \
  X(TAV_ERR_NOT_CONNECTED, 8, "TAV_ERR_NOT_CONNECTED")        \
  X(TAV_ERR_STORAGE, 9, "TAV_ERR_STORAGE")                    \
  X(TAV_ERR_UNKNOWN_DATABASE, 10, "TAV_ERR_UNKNOWN_DATABASE") \
  X(TAV_ERR_CONFLICT, 11, "TAV_ERR_CONFLICT")                 \
  X(TAV_ERR_IN_USE, 12, "TAV_ERR_IN_USE")                     \
  X(TAV_ERR_BAD_CONF, 13, "TAV_ERR_BAD_CONF")                 \
  X(TAV_ERR_BAD_OPCODE, 14, "TAV_ERR_BAD_OPCODE")             \
  X(TAV_ERR_WRITE_REFUSED, 65, "TAV_ERR_WRITE_REFUSED")

#define DD_ENUM_ROW(name, number, text) name = number,
enum { DD_ERROR_LOCATIONS(DD_ENUM_ROW) };
enum { DD_ERROR_CLASSES(DD_ENUM_ROW) };
enum { DD_ERROR_CODES(DD_ENUM_ROW) };
#undef DD_ENUM_ROW

#endif
