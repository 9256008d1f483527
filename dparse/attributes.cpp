#include "dparse/attributes.h"

#include <array>

#include "dparse/read/forms.h"
#include "dparse/write/forms.h"

namespace {

//                                 read                   written
constexpr dparse_form TEXT{dparse_read_text, dparse_write_text};
constexpr dparse_form QUOTED_NUMBER{dparse_read_quoted_number, dparse_write_quoted_number};
constexpr dparse_form SEQ_START{dparse_read_seq_start, dparse_write_seq_start};
constexpr dparse_form ACCESS{dparse_read_access, dparse_write_text};
constexpr dparse_form WORD{dparse_read_word, dparse_write_bare_text};
constexpr dparse_form EXACT_WORD{dparse_read_exact_word, dparse_write_text};
constexpr dparse_form FOLDED_WORD{dparse_read_folded_word, dparse_write_text};
constexpr dparse_form YES_NO{dparse_read_yes_no, dparse_write_yes};
constexpr dparse_form ZERO_ONE{dparse_read_zero_one, dparse_write_number};
constexpr dparse_form NUMBER{dparse_read_number, nullptr};
constexpr dparse_form ID{dparse_read_id, dparse_write_number, true};
constexpr dparse_form LENGTH{dparse_read_length, dparse_write_number_above_none};
constexpr dparse_form ORDER{dparse_read_order, dparse_write_order};
constexpr dparse_form TABLE{dparse_read_table, dparse_write_text};
constexpr dparse_form COLUMN{dparse_read_column, nullptr};
constexpr dparse_form ATTRVAL{dparse_read_attrval, nullptr};
constexpr dparse_form OBJECTCLASS{dparse_read_objectclass, nullptr};

constexpr unsigned NEVER = 0;
constexpr unsigned DEFINITION = DPARSE_IN_DEFINITION;
constexpr unsigned CLASS = DPARSE_IN_CLASS;
constexpr unsigned ENTRY = DPARSE_IN_ENTRY;
constexpr unsigned SQL_CLASS = DPARSE_IN_SQL_CLASS;
constexpr unsigned SQL_ENTRY = DPARSE_IN_SQL_ENTRY;
constexpr unsigned LDAP_CLASS = DPARSE_IN_LDAP_CLASS;
constexpr unsigned LDAP_ENTRY = DPARSE_IN_LDAP_ENTRY;

constexpr char LONG_COLUMN[] = "column name \"%s\" is too long. len=%d, max len=%d";
constexpr char BAD_AUDIT_SCHEME[] = "Invalid Audit Scheme '%s'";

// clang-format off
constexpr dparse_attribute ROWS[] = {
    {DPARSE_KEY_ID, TAV_FLD_FIELD_NUM, &ID, DEFINITION, DEFINITION, nullptr,
     "Invalid ID number '%s'", "Id number expected instead of '%s'"},

    {DPARSE_KEY_SEQ_START, TAV_FLD_SEQ_START, &SEQ_START, CLASS, CLASS, nullptr,
     "Bad seq start %s in class %s"},
    {DPARSE_KEY_LABEL, TAV_FLD_LABEL, &TEXT, CLASS | ENTRY, CLASS | ENTRY},
    {DPARSE_KEY_READ_ACCESS, TAV_FLD_READ_ACCESS, &ACCESS, CLASS, CLASS},
    {DPARSE_KEY_WRITE_ACCESS, TAV_FLD_WRITE_ACCESS, &ACCESS, CLASS, CLASS},
    {DPARSE_KEY_CREATE_ACCESS, TAV_FLD_CREATE_ACCESS, &WORD, CLASS, NEVER, DPARSE_CREATE_LEVELS,
     "Invalid Create Access Level '%s'"},
    {DPARSE_KEY_DESCR, TAV_FLD_DESCR, &TEXT, DEFINITION | CLASS | ENTRY,
     DEFINITION | CLASS | ENTRY},
    {DPARSE_KEY_IS_PARTITIONED, TAV_FLD_IS_PARTITIONED, &QUOTED_NUMBER, CLASS, CLASS, nullptr,
     "Bad is_partitioned %s in class %s"},
    {DPARSE_KEY_PARTITION_MODE, TAV_FLD_PARTITION_MODE, &EXACT_WORD, CLASS, CLASS,
     DPARSE_PARTITION_MODES, "Invalid Partition_mode '%s'"},
    {DPARSE_KEY_RESIDENCY_TYPE, TAV_FLD_RESIDENCY_TYPE, &QUOTED_NUMBER, CLASS, NEVER, nullptr,
     "Bad residency_type %s in class %s"},
    {DPARSE_KEY_AUDIT_SCHEME, TAV_FLD_AUDIT_SCHEME, &FOLDED_WORD, CLASS, CLASS,
     DPARSE_AUDIT_SCHEMES, BAD_AUDIT_SCHEME},
    {DPARSE_KEY_EVENT_TYPE, TAV_FLD_EVENT_TYPE, &TEXT, CLASS, CLASS},
    {DPARSE_KEY_VIRTUAL_FLAG, TAV_FLD_VIRTUAL_FLAG, &QUOTED_NUMBER, CLASS, CLASS, nullptr,
     "Bad virtual_flag %s in class %s"},

    {DPARSE_KEY_ORDER, TAV_FLD_ORDER, &ORDER, ENTRY, ENTRY, nullptr,
     "Invalid order number '%s'", "Order number expected instead of '%s'"},
    {DPARSE_KEY_LENGTH, TAV_FLD_LENGTH, &LENGTH, ENTRY, ENTRY, nullptr,
     "Invalid length value '%s'", "Length value expected instead of '%s'"},
    {DPARSE_KEY_CREATE, TAV_FLD_CREATE_PERMISSION, &WORD, ENTRY, ENTRY,
     DPARSE_CREATE_PERMISSIONS, "Invalid Create Permission '%s'"},
    {DPARSE_KEY_MODIFY, TAV_FLD_MODIFY_PERMISSION, &WORD, ENTRY, ENTRY,
     DPARSE_MODIFY_PERMISSIONS, "Invalid Modify Permission '%s'"},
    {DPARSE_KEY_AUDITABLE, TAV_FLD_AUDITABLE, &ZERO_ONE, ENTRY, ENTRY},
    {DPARSE_KEY_ENCRYPTABLE, TAV_FLD_ENCRYPTABLE, &ZERO_ONE, ENTRY, ENTRY},
    {DPARSE_KEY_SERIALIZABLE, TAV_FLD_SERIALIZABLE, &ZERO_ONE, ENTRY, ENTRY},
    // No audit scheme is involved in these two; the message is deliberate.
    {DPARSE_KEY_QUERYABLE_ON_AUDIT, TAV_FLD_QUERYABLE_ON_AUDIT, &YES_NO, ENTRY, ENTRY,
     DPARSE_YES_NO, BAD_AUDIT_SCHEME, "Invalid Value '%s'"},
    {DPARSE_KEY_IGNORE_ON_AUDIT, TAV_FLD_IGNORE_ON_AUDIT, &YES_NO, ENTRY, ENTRY,
     DPARSE_YES_NO, BAD_AUDIT_SCHEME, "Invalid Value '%s'"},

    {DPARSE_KEY_SQL_TABLE, TAV_FLD_SQL_TABLE, &TABLE, SQL_CLASS | SQL_ENTRY, SQL_CLASS, nullptr,
     "table name \"%s\" is too long. len=%d, max len=%d"},
    {DPARSE_KEY_SQL_COLUMN, TAV_FLD_SQL_TABLE, &COLUMN, SQL_ENTRY, NEVER, nullptr, LONG_COLUMN},
    {DPARSE_KEY_SQL_COLUMN_PREFIX, TAV_FLD_SQL_TABLE, &COLUMN, SQL_ENTRY, NEVER, nullptr,
     LONG_COLUMN},
    {DPARSE_KEY_SQL_STORAGE, TAV_FLD_SQL_STORAGE, &TEXT, SQL_CLASS | SQL_ENTRY, SQL_CLASS},

    {DPARSE_KEY_LOCATION, TAV_FLD_LOCATION, &TEXT, LDAP_CLASS, NEVER},
    {DPARSE_KEY_ATTRVAL, TAV_FLD_ATTRVAL, &ATTRVAL, LDAP_CLASS, NEVER},
    {DPARSE_KEY_ENTRY_TYPE, TAV_FLD_ENTRY_TYPE, &TEXT, LDAP_CLASS, NEVER},
    {DPARSE_KEY_LINK_OBJECT, TAV_FLD_LINK_OBJECT, &TEXT, LDAP_CLASS, NEVER},
    {DPARSE_KEY_ATTRIBUTE, TAV_FLD_ATTRIBUTE, &TEXT, LDAP_ENTRY, NEVER},
    {DPARSE_KEY_MULTIVALUED, TAV_FLD_MULTIVALUED, &ZERO_ONE, LDAP_ENTRY, NEVER},
    {DPARSE_KEY_RDN_PIECE, TAV_FLD_RDN_PIECE, &NUMBER, LDAP_ENTRY, NEVER, nullptr,
     "Invalid value for RDN_PIECE '%s'", DPARSE_ZERO_OR_ONE_EXPECTED},
    {DPARSE_KEY_LINK_ATTRIBUTE, TAV_FLD_LINK_ATTRIBUTE, &NUMBER, LDAP_ENTRY, NEVER, nullptr,
     "Invalid value for LINK_ATTRIBUTE '%s'", DPARSE_ZERO_OR_ONE_EXPECTED},
    {DPARSE_KEY_OBJECTCLASS, TAV_FLD_OBJECTCLASS, &OBJECTCLASS, LDAP_ENTRY, NEVER, nullptr,
     "Attribute cannot belong to %d objectclasses"},
};
// clang-format on

// A keyword is that of one row at most.
constexpr auto ROW_OF_TOKEN = [] {
  std::array<const dparse_attribute*, DPARSE_TOKEN_NUMBERS> rows{};
  for (const dparse_attribute& row : ROWS) rows[static_cast<size_t>(row.token)] = &row;
  return rows;
}();

}  // namespace

std::span<const dparse_attribute> dparse_attributes() {
  return ROWS;
}

const dparse_attribute* dparse_find_attribute(int token, unsigned context) {
  const dparse_attribute* row = ROW_OF_TOKEN[static_cast<size_t>(token)];
  return row != nullptr && (row->read_in & context) != 0 ? row : nullptr;
}
