// The attributes of field definitions, of classes and of their field entries: what is true of each
// wherever it stands. How the language reads and writes them: dparse/attributes.cpp.
#ifndef DD_ATTRIBUTES_H
#define DD_ATTRIBUTES_H

#include <array>
#include <cstdint>
#include <iterator>
#include <string_view>

#include "dd/field_ids.h"
#include "dd/keywords.h"

enum class dd_value_kind {
  TEXT,
  NUMBER,
  DECIMAL,
  TEXTS  // an array whose elements hold one text each
};

// What a replacement does with the old value.
enum class dd_keeping {
  NEVER,      // the new definition decides
  IF_SILENT,  // the old value stays where the new definition gives none
  ALWAYS      // the old value stays where there is one
};

// Where an attribute may stand: a set.
enum : unsigned {
  DD_IN_DEFINITION = 1,  // of a field
  DD_IN_CLASS = 2,       // interface blocks, and their field entries
  DD_IN_ENTRY = 4,
  DD_IN_SQL_CLASS = 8,  // implementation blocks, and their field entries
  DD_IN_SQL_ENTRY = 16,
  DD_IN_LDAP_CLASS = 32,
  DD_IN_LDAP_ENTRY = 64,

  DD_IN_ANY_CLASS = DD_IN_CLASS | DD_IN_SQL_CLASS | DD_IN_LDAP_CLASS,
  DD_IN_ANY_ENTRY = DD_IN_ENTRY | DD_IN_SQL_ENTRY | DD_IN_LDAP_ENTRY,
};

struct dd_attribute {
  int keyword;     // DD_KEY_NONE: the head of a block gives it
  uint32_t field;  // that holds it in a list
  dd_value_kind kind;
  std::string_view key;  // in the stored definition; for a field definition the column
  dd_keeping kept;
  unsigned contexts;
  uint32_t text = 0;  // TEXTS: the field that holds the text of an element
};

// In the order in which the attributes of a class, and those of an entry, stand in the stored
// definition. Never reorder: a class that is deployed again unchanged would look changed. Several
// keywords in one context may stand for the same field.
inline constexpr auto DD_ATTRIBUTES = [] {
  using enum dd_value_kind;
  using enum dd_keeping;
  constexpr unsigned DEFINITION = DD_IN_DEFINITION;
  constexpr unsigned CLASS = DD_IN_CLASS;
  constexpr unsigned ENTRY = DD_IN_ENTRY;
  constexpr unsigned SQL_CLASS = DD_IN_SQL_CLASS;
  constexpr unsigned SQL_ENTRY = DD_IN_SQL_ENTRY;
  constexpr unsigned LDAP_CLASS = DD_IN_LDAP_CLASS;
  constexpr unsigned LDAP_ENTRY = DD_IN_LDAP_ENTRY;
  // clang-format off
  return std::to_array<dd_attribute>({
    {DD_KEY_ID, TAV_FLD_FIELD_NUM, NUMBER, "number", NEVER, DEFINITION},
    {DD_KEY_DESCR, TAV_FLD_DESCR, TEXT, "descr", IF_SILENT, DEFINITION},

    {DD_KEY_NONE, TAV_FLD_NAME, TEXT, "name", ALWAYS, CLASS},
    {DD_KEY_NONE, TAV_FLD_FIELD_NAME, TEXT, "name", ALWAYS, ENTRY},
    {DD_KEY_NONE, TAV_FLD_FIELD_TYPE, NUMBER, "type", NEVER, ENTRY},
    {DD_KEY_SQL_TABLE, TAV_FLD_SQL_TABLE, TEXT, "sql_table", ALWAYS, SQL_CLASS},
    // A scalar's column, a container's table, a BUF's "C=column T=table".
    {DD_KEY_SQL_TABLE, TAV_FLD_SQL_TABLE, TEXT, "sql_name", ALWAYS, SQL_ENTRY},
    {DD_KEY_SQL_COLUMN, TAV_FLD_SQL_TABLE, TEXT, "sql_name", ALWAYS, SQL_ENTRY},
    {DD_KEY_SQL_COLUMN_PREFIX, TAV_FLD_SQL_TABLE, TEXT, "sql_name", ALWAYS, SQL_ENTRY},
    {DD_KEY_SQL_STORAGE, TAV_FLD_SQL_STORAGE, TEXT, "sql_storage", ALWAYS, SQL_CLASS | SQL_ENTRY},
    {DD_KEY_CREATE, TAV_FLD_CREATE_PERMISSION, TEXT, "create", NEVER, ENTRY},
    {DD_KEY_MODIFY, TAV_FLD_MODIFY_PERMISSION, TEXT, "modify", NEVER, ENTRY},
    {DD_KEY_ORDER, TAV_FLD_ORDER, DECIMAL, "order", NEVER, ENTRY},
    {DD_KEY_LENGTH, TAV_FLD_LENGTH, NUMBER, "length", NEVER, ENTRY},
    {DD_KEY_DESCR, TAV_FLD_DESCR, TEXT, "descr", NEVER, CLASS | ENTRY},
    {DD_KEY_LABEL, TAV_FLD_LABEL, TEXT, "label", NEVER, CLASS | ENTRY},
    {DD_KEY_SEQ_START, TAV_FLD_SEQ_START, NUMBER, "seq_start", NEVER, CLASS},
    {DD_KEY_READ_ACCESS, TAV_FLD_READ_ACCESS, TEXT, "read_access", NEVER, CLASS},
    {DD_KEY_WRITE_ACCESS, TAV_FLD_WRITE_ACCESS, TEXT, "write_access", NEVER, CLASS},
    {DD_KEY_CREATE_ACCESS, TAV_FLD_CREATE_ACCESS, TEXT, "create_access", IF_SILENT, CLASS},
    {DD_KEY_IS_PARTITIONED, TAV_FLD_IS_PARTITIONED, NUMBER, "is_partitioned", NEVER, CLASS},
    {DD_KEY_PARTITION_MODE, TAV_FLD_PARTITION_MODE, TEXT, "partition_mode", NEVER, CLASS},
    {DD_KEY_RESIDENCY_TYPE, TAV_FLD_RESIDENCY_TYPE, NUMBER, "residency_type", IF_SILENT, CLASS},
    {DD_KEY_AUDIT_SCHEME, TAV_FLD_AUDIT_SCHEME, TEXT, "audit_scheme", NEVER, CLASS},
    {DD_KEY_EVENT_TYPE, TAV_FLD_EVENT_TYPE, TEXT, "event_type", NEVER, CLASS},
    {DD_KEY_VIRTUAL_FLAG, TAV_FLD_VIRTUAL_FLAG, NUMBER, "virtual_flag", NEVER, CLASS},
    {DD_KEY_AUDITABLE, TAV_FLD_AUDITABLE, NUMBER, "auditable", NEVER, ENTRY},
    {DD_KEY_ENCRYPTABLE, TAV_FLD_ENCRYPTABLE, NUMBER, "encryptable", NEVER, ENTRY},
    {DD_KEY_SERIALIZABLE, TAV_FLD_SERIALIZABLE, NUMBER, "serializable", NEVER, ENTRY},
    {DD_KEY_QUERYABLE_ON_AUDIT, TAV_FLD_QUERYABLE_ON_AUDIT, NUMBER, "queryable_on_audit",
        NEVER, ENTRY},
    {DD_KEY_IGNORE_ON_AUDIT, TAV_FLD_IGNORE_ON_AUDIT, NUMBER, "ignore_on_audit", NEVER, ENTRY},
    {DD_KEY_LOCATION, TAV_FLD_LOCATION, TEXT, "location", IF_SILENT, LDAP_CLASS},
    {DD_KEY_ATTRVAL, TAV_FLD_ATTRVALS, TEXTS, "attrvals", IF_SILENT, LDAP_CLASS, TAV_FLD_ATTRVAL},
    {DD_KEY_ENTRY_TYPE, TAV_FLD_ENTRY_TYPE, TEXT, "entry_type", IF_SILENT, LDAP_CLASS},
    {DD_KEY_LINK_OBJECT, TAV_FLD_LINK_OBJECT, TEXT, "link_object", IF_SILENT, LDAP_CLASS},
    {DD_KEY_ATTRIBUTE, TAV_FLD_ATTRIBUTE, TEXT, "attribute", IF_SILENT, LDAP_ENTRY},
    {DD_KEY_RDN_PIECE, TAV_FLD_RDN_PIECE, NUMBER, "rdn_piece", IF_SILENT, LDAP_ENTRY},
    {DD_KEY_MULTIVALUED, TAV_FLD_MULTIVALUED, NUMBER, "multivalued", IF_SILENT, LDAP_ENTRY},
    {DD_KEY_LINK_ATTRIBUTE, TAV_FLD_LINK_ATTRIBUTE, NUMBER, "link_attribute",
        IF_SILENT, LDAP_ENTRY},
    {DD_KEY_OBJECTCLASS, TAV_FLD_OBJECTCLASSES, TEXTS, "objectclasses",
        IF_SILENT, LDAP_ENTRY, TAV_FLD_OBJECTCLASS},
  });
  // clang-format on
}();

// The index of the field's first row in one of the contexts; the number of rows where there is
// none.
constexpr size_t dd_attribute_place(uint32_t field, unsigned contexts) {
  size_t place = 0;
  for (const dd_attribute& row : DD_ATTRIBUTES) {
    if (row.field == field && (row.contexts & contexts) != 0) break;
    ++place;
  }
  return place;
}

// The row itself, or null.
constexpr const dd_attribute* dd_find_attribute(uint32_t field, unsigned contexts) {
  const size_t place = dd_attribute_place(field, contexts);
  return place < DD_ATTRIBUTES.size() ? &DD_ATTRIBUTES[place] : nullptr;
}

// Whether the row is the first of its field in the contexts.
constexpr bool dd_is_first(size_t place, unsigned contexts) {
  return dd_attribute_place(DD_ATTRIBUTES[place].field, contexts) == place;
}

constexpr size_t dd_count_attributes(unsigned contexts) {
  size_t count = 0;
  for (size_t i = 0; i < DD_ATTRIBUTES.size(); ++i) count += dd_is_first(i, contexts) ? 1 : 0;
  return count;
}

// The rows of these contexts, each field once.
template <unsigned CONTEXTS>
constexpr auto dd_attributes_in() {
  std::array<dd_attribute, dd_count_attributes(CONTEXTS)> rows{};
  size_t count = 0;
  for (size_t i = 0; i < DD_ATTRIBUTES.size(); ++i) {
    if (dd_is_first(i, CONTEXTS)) rows[count++] = DD_ATTRIBUTES[i];
  }
  return rows;
}

constexpr bool dd_holds(dd_value_kind kind, uint32_t field, uint32_t text) {
  const int32_t type = DD_FIELD_ID_TYPE(field);
  switch (kind) {
    case dd_value_kind::TEXT:
      return type == TAV_FLDT_STRING;
    case dd_value_kind::NUMBER:
      return type == TAV_FLDT_INT || type == TAV_FLDT_ENUM;
    case dd_value_kind::DECIMAL:
      return type == TAV_FLDT_DECIMAL;
    case dd_value_kind::TEXTS:
      return type == TAV_FLDT_ARRAY && DD_FIELD_ID_TYPE(text) == TAV_FLDT_STRING;
  }
  return false;
}

static_assert(std::ranges::all_of(DD_ATTRIBUTES,
                                  [](const dd_attribute& row) {
                                    return dd_holds(row.kind, row.field, row.text);
                                  }),
              "the kind of an attribute does not suit the type of its field");

// Whether clash(a, b) is false for every two rows that can describe the same field definition,
// class or entry.
template <class Clash>
constexpr bool dd_no_attributes(Clash clash) {
  for (const dd_attribute& a : DD_ATTRIBUTES) {
    for (const dd_attribute& b : DD_ATTRIBUTES) {
      const auto share = [&](unsigned set) { return (a.contexts & set) && (b.contexts & set); };
      const bool meet = share(DD_IN_DEFINITION) || share(DD_IN_ANY_CLASS) || share(DD_IN_ANY_ENTRY);
      if (&a != &b && meet && clash(a, b)) return false;
    }
  }
  return true;
}

static_assert(std::ranges::none_of(DD_ATTRIBUTES,
                                   [](const dd_attribute& row) {
                                     return row.key.empty() || row.contexts == 0;
                                   }),
              "an attribute has no stored key, or stands nowhere");
static_assert(dd_no_attributes([](const dd_attribute& a, const dd_attribute& b) {
                return a.keyword == b.keyword && a.keyword != DD_KEY_NONE;
              }),
              "a keyword has two attributes in one place");
static_assert(dd_no_attributes([](const dd_attribute& a, const dd_attribute& b) {
                return (a.field == b.field) != (a.key == b.key);
              }),
              "a field has two stored keys, or two fields have the same one");
static_assert(dd_no_attributes([](const dd_attribute& a, const dd_attribute& b) {
                return a.field == b.field && (a.kind != b.kind || a.kept != b.kept);
              }),
              "the rows of a field differ");

#endif
