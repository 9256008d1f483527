// The attributes of a class and of a field entry as they are kept: one row each.
//
// A row names the attribute's key in the stored definition, its field identifier, how its value is
// written, and what a replacement of the class does with the old value. The order of the rows is
// the order in the stored text.
#ifndef DM_ATTRIBUTES_H
#define DM_ATTRIBUTES_H

#include <array>
#include <string_view>

#include "dd/vantor.h"

namespace dm {

enum class value_form {
  TEXT,
  NUMBER,
  DECIMAL,  // written as a text, so that its digits stay
  TEXTS     // an array whose elements hold one text each
};

enum class keeping {
  NEVER,     // the new definition decides
  ALWAYS,    // the old value stays where there is one
  IF_SILENT  // the old value stays where the new definition gives none
};

struct attribute {
  std::string_view key;
  uint32_t field;
  value_form form;
  keeping kept;
  uint32_t text = 0;  // TEXTS: the field of the text in an element
};

// Rows that rules name; the others are only carried.
enum class_attribute { CLASS_NAME, CLASS_TABLE, CLASS_STORAGE };
enum entry_attribute {
  ENTRY_NAME,
  ENTRY_TYPE,
  ENTRY_SQL_NAME,
  ENTRY_STORAGE,
  ENTRY_CREATE,
  ENTRY_MODIFY
};

inline constexpr std::array<attribute, 19> CLASS_ATTRIBUTES = {{
    {"name", TAV_FLD_NAME, value_form::TEXT, keeping::ALWAYS},
    {"sql_table", TAV_FLD_SQL_TABLE, value_form::TEXT, keeping::ALWAYS},
    {"sql_storage", TAV_FLD_SQL_STORAGE, value_form::TEXT, keeping::ALWAYS},
    {"descr", TAV_FLD_DESCR, value_form::TEXT, keeping::NEVER},
    {"label", TAV_FLD_LABEL, value_form::TEXT, keeping::NEVER},
    {"seq_start", TAV_FLD_SEQ_START, value_form::NUMBER, keeping::NEVER},
    {"read_access", TAV_FLD_READ_ACCESS, value_form::TEXT, keeping::NEVER},
    {"write_access", TAV_FLD_WRITE_ACCESS, value_form::TEXT, keeping::NEVER},
    {"create_access", TAV_FLD_CREATE_ACCESS, value_form::TEXT, keeping::IF_SILENT},
    {"is_partitioned", TAV_FLD_IS_PARTITIONED, value_form::NUMBER, keeping::NEVER},
    {"partition_mode", TAV_FLD_PARTITION_MODE, value_form::TEXT, keeping::NEVER},
    {"residency_type", TAV_FLD_RESIDENCY_TYPE, value_form::NUMBER, keeping::IF_SILENT},
    {"audit_scheme", TAV_FLD_AUDIT_SCHEME, value_form::TEXT, keeping::NEVER},
    {"event_type", TAV_FLD_EVENT_TYPE, value_form::TEXT, keeping::NEVER},
    {"virtual_flag", TAV_FLD_VIRTUAL_FLAG, value_form::NUMBER, keeping::NEVER},
    {"location", TAV_FLD_LOCATION, value_form::TEXT, keeping::IF_SILENT},
    {"attrvals", TAV_FLD_ATTRVALS, value_form::TEXTS, keeping::IF_SILENT, TAV_FLD_ATTRVAL},
    {"entry_type", TAV_FLD_ENTRY_TYPE, value_form::TEXT, keeping::IF_SILENT},
    {"link_object", TAV_FLD_LINK_OBJECT, value_form::TEXT, keeping::IF_SILENT},
}};

// The SQL name is a scalar's column, a container's table, a BUF's "C=column T=table".
inline constexpr std::array<attribute, 20> ENTRY_ATTRIBUTES = {{
    {"name", TAV_FLD_FIELD_NAME, value_form::TEXT, keeping::ALWAYS},
    {"type", TAV_FLD_FIELD_TYPE, value_form::NUMBER, keeping::NEVER},
    {"sql_name", TAV_FLD_SQL_TABLE, value_form::TEXT, keeping::ALWAYS},
    {"sql_storage", TAV_FLD_SQL_STORAGE, value_form::TEXT, keeping::ALWAYS},
    {"create", TAV_FLD_CREATE_PERMISSION, value_form::TEXT, keeping::NEVER},
    {"modify", TAV_FLD_MODIFY_PERMISSION, value_form::TEXT, keeping::NEVER},
    {"order", TAV_FLD_ORDER, value_form::DECIMAL, keeping::NEVER},
    {"length", TAV_FLD_LENGTH, value_form::NUMBER, keeping::NEVER},
    {"descr", TAV_FLD_DESCR, value_form::TEXT, keeping::NEVER},
    {"label", TAV_FLD_LABEL, value_form::TEXT, keeping::NEVER},
    {"auditable", TAV_FLD_AUDITABLE, value_form::NUMBER, keeping::NEVER},
    {"encryptable", TAV_FLD_ENCRYPTABLE, value_form::NUMBER, keeping::NEVER},
    {"serializable", TAV_FLD_SERIALIZABLE, value_form::NUMBER, keeping::NEVER},
    {"queryable_on_audit", TAV_FLD_QUERYABLE_ON_AUDIT, value_form::NUMBER, keeping::NEVER},
    {"ignore_on_audit", TAV_FLD_IGNORE_ON_AUDIT, value_form::NUMBER, keeping::NEVER},
    {"attribute", TAV_FLD_ATTRIBUTE, value_form::TEXT, keeping::IF_SILENT},
    {"rdn_piece", TAV_FLD_RDN_PIECE, value_form::NUMBER, keeping::IF_SILENT},
    {"multivalued", TAV_FLD_MULTIVALUED, value_form::NUMBER, keeping::IF_SILENT},
    {"link_attribute", TAV_FLD_LINK_ATTRIBUTE, value_form::NUMBER, keeping::IF_SILENT},
    {"objectclasses", TAV_FLD_OBJECTCLASSES, value_form::TEXTS, keeping::IF_SILENT,
     TAV_FLD_OBJECTCLASS},
}};

static_assert(CLASS_ATTRIBUTES[CLASS_NAME].field == TAV_FLD_NAME);
static_assert(CLASS_ATTRIBUTES[CLASS_TABLE].field == TAV_FLD_SQL_TABLE);
static_assert(CLASS_ATTRIBUTES[CLASS_STORAGE].field == TAV_FLD_SQL_STORAGE);
static_assert(ENTRY_ATTRIBUTES[ENTRY_NAME].field == TAV_FLD_FIELD_NAME);
static_assert(ENTRY_ATTRIBUTES[ENTRY_TYPE].field == TAV_FLD_FIELD_TYPE);
static_assert(ENTRY_ATTRIBUTES[ENTRY_SQL_NAME].field == TAV_FLD_SQL_TABLE);
static_assert(ENTRY_ATTRIBUTES[ENTRY_STORAGE].field == TAV_FLD_SQL_STORAGE);
static_assert(ENTRY_ATTRIBUTES[ENTRY_CREATE].field == TAV_FLD_CREATE_PERMISSION);
static_assert(ENTRY_ATTRIBUTES[ENTRY_MODIFY].field == TAV_FLD_MODIFY_PERMISSION);

// The key under which a class and a container entry hold their entries.
inline constexpr char ENTRIES_KEY[] = "entries";

}  // namespace dm

#endif
