// Field identifiers: the type code in the top 8 bits, the field number in the low 24.
// Part of the interface: never renumber. A row here is also a predefined field of every dictionary.
#ifndef DD_FIELD_IDS_H
#define DD_FIELD_IDS_H

#include <stdint.h>

#include "dd/types.h"

// X(name, type, number, description)
#define DD_FIELD_IDS(X)                                                                            \
  X(TAV_FLD_POID, TAV_FLDT_POID, 16, "Object id: the target of an operation.")                     \
  X(TAV_FLD_NAME, TAV_FLDT_STRING, 17, "Name of a storable class.")                                \
  X(TAV_FLD_CREATED_T, TAV_FLDT_TIMESTAMP, 18, "When an object was created.")                      \
  X(TAV_FLD_MOD_T, TAV_FLDT_TIMESTAMP, 19, "When an object was last changed.")                     \
  X(TAV_FLD_ARGS, TAV_FLDT_ARRAY, 49, "Arguments.")                                                \
  X(TAV_FLD_DESCR, TAV_FLDT_STRING, 54, "Description.")                                            \
  X(TAV_FLD_FIELD, TAV_FLDT_ARRAY, 88, "Field definitions.")                                       \
  X(TAV_FLD_FIELD_NUM, TAV_FLDT_ENUM, 89, "Number of a field.")                                    \
  X(TAV_FLD_FIELD_FLAGS, TAV_FLDT_ENUM, 145,                                                       \
    "Flags of a field definition; 2 marks a predefined field.")                                    \
  X(TAV_FLD_FLAGS, TAV_FLDT_INT, 353, "Flags.")                                                    \
  X(TAV_FLD_LENGTH, TAV_FLDT_INT, 507, "Length of a field entry.")                                 \
  X(TAV_FLD_FIELD_NAME, TAV_FLDT_STRING, 508, "Name of a field.")                                  \
  X(TAV_FLD_FIELD_TYPE, TAV_FLDT_INT, 509, "Type code of a field.")                                \
  X(TAV_FLD_OBJ_DESC, TAV_FLDT_ARRAY, 544, "Storable class definitions.")                          \
  X(TAV_FLD_OBJ_ELEM, TAV_FLDT_ARRAY, 545, "Field entries of a class or of a field entry.")        \
  X(TAV_FLD_SQL_TABLE, TAV_FLDT_STRING, 546,                                                       \
    "SQL name: the table of a class or array, the column of a field.")                             \
  X(TAV_FLD_SQL_STORAGE, TAV_FLDT_STRING, 550, "SQL storage clause.")                              \
  X(TAV_FLD_CREATE_PERMISSION, TAV_FLDT_STRING, 552, "Whether a field is given on creation.")      \
  X(TAV_FLD_MODIFY_PERMISSION, TAV_FLDT_STRING, 553, "Whether a field may be changed.")            \
  X(TAV_FLD_SEQ_START, TAV_FLDT_INT, 556, "First sequence number of a class.")                     \
  X(TAV_FLD_AUDITABLE, TAV_FLDT_INT, 558, "Whether changes of a field are audited.")               \
  X(TAV_FLD_ENCRYPTABLE, TAV_FLDT_INT, 559, "Whether a field may be encrypted.")                   \
  X(TAV_FLD_PARTITION_MODE, TAV_FLDT_STRING, 563, "How a class is partitioned.")                   \
  X(TAV_FLD_IS_PARTITIONED, TAV_FLDT_INT, 564, "Whether a class is partitioned.")                  \
  X(TAV_FLD_RESIDENCY_TYPE, TAV_FLDT_INT, 565, "Where the objects of a class reside.")             \
  X(TAV_FLD_SERIALIZABLE, TAV_FLDT_INT, 566, "Whether a field is kept in serialized form.")        \
  X(TAV_FLD_AUDIT_SCHEME, TAV_FLDT_STRING, 568, "How the audit of a class is kept.")               \
  X(TAV_FLD_QUERYABLE_ON_AUDIT, TAV_FLDT_ENUM, 569, "Whether an audited field can be searched.")   \
  X(TAV_FLD_IGNORE_ON_AUDIT, TAV_FLDT_ENUM, 570, "Whether the audit passes a field over.")         \
  X(TAV_FLD_VIRTUAL_FLAG, TAV_FLDT_INT, 571, "Whether a class is virtual.")                        \
  X(TAV_FLD_LABEL, TAV_FLDT_STRING, 601, "Label.")                                                 \
  X(TAV_FLD_ORDER, TAV_FLDT_DECIMAL, 602, "Position of a field entry.")                            \
  X(TAV_FLD_EVENT_TYPE, TAV_FLDT_STRING, 904, "Type of the events of a class.")                    \
  X(TAV_FLD_LOCATION, TAV_FLDT_STRING, 1251, "Directory location of a class.")                     \
  X(TAV_FLD_ATTRIBUTE, TAV_FLDT_STRING, 1252, "Directory attribute of a field.")                   \
  X(TAV_FLD_RDN_PIECE, TAV_FLDT_INT, 1253, "Place of a field in the relative distinguished name.") \
  X(TAV_FLD_MULTIVALUED, TAV_FLDT_INT, 1254, "Whether a directory attribute has many values.")     \
  X(TAV_FLD_ATTRVAL, TAV_FLDT_STRING, 1255, "A fixed directory attribute value.")                  \
  X(TAV_FLD_ATTRVALS, TAV_FLDT_ARRAY, 1256, "Fixed directory attribute values of a class.")        \
  X(TAV_FLD_ENTRY_TYPE, TAV_FLDT_STRING, 1258, "Directory entry type of a class.")                 \
  X(TAV_FLD_LINK_OBJECT, TAV_FLDT_STRING, 1261, "Directory object that a class links to.")         \
  X(TAV_FLD_LINK_ATTRIBUTE, TAV_FLDT_INT, 1262, "Whether a directory attribute is a link.")        \
  X(TAV_FLD_OBJECTCLASS, TAV_FLDT_STRING, 1263, "Directory object class.")                         \
  X(TAV_FLD_OBJECTCLASSES, TAV_FLDT_ARRAY, 1264, "Directory object classes of a field.")           \
  X(TAV_FLD_READ_ACCESS, TAV_FLDT_STRING, 1903, "Who may read objects of a class.")                \
  X(TAV_FLD_WRITE_ACCESS, TAV_FLDT_STRING, 1904, "Who may write objects of a class.")              \
  X(TAV_FLD_CREATE_ACCESS, TAV_FLDT_STRING, 1908, "Who may create objects of a class.")

#define DD_HIGHEST_FIELD_NUMBER 0xffffff
#define DD_FIELD_ID(type, number) (((uint32_t)(type) << 24) + (uint32_t)(number))
#define DD_FIELD_ID_TYPE(field) ((int32_t)((field) >> 24))
#define DD_FIELD_ID_NUMBER(field) ((int32_t)((field)&DD_HIGHEST_FIELD_NUMBER))

#define DD_ENUM_ROW(name, type, number, description) name = DD_FIELD_ID(type, number),
enum { DD_FIELD_IDS(DD_ENUM_ROW) };
#undef DD_ENUM_ROW

// A bit of TAV_FLD_FIELD_FLAGS: the field came with the dictionary.
enum { DD_FIELD_PREDEFINED = 2 };
// The value of TAV_FLD_FLAGS that an import sets on a field which the server already holds.
enum { DD_FIELD_ON_SERVER = 1 };

#endif
