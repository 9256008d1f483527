#include "dparse/attributes.h"

#include <algorithm>
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

// Where an attribute is written: nowhere, wherever it is read, or only there.
constexpr unsigned NEVER = 0;
constexpr unsigned ALL = ~0u;
constexpr unsigned SQL_CLASS = DD_IN_SQL_CLASS;

constexpr char LONG_COLUMN[] = "column name \"%s\" is too long. len=%d, max len=%d";
constexpr char BAD_AUDIT_SCHEME[] = "Invalid Audit Scheme '%s'";

struct spelling {
  int token;
  const dparse_form* form;
  unsigned written_in;
  const dparse_word* words = nullptr;
  const char* refused = nullptr;
  const char* expected = nullptr;
};

// In the order in which they are written.
// clang-format off
constexpr spelling SPELLINGS[] = {
    {DPARSE_KEY_ID, &ID, ALL, nullptr,
     "Invalid ID number '%s'", "Id number expected instead of '%s'"},

    {DPARSE_KEY_SEQ_START, &SEQ_START, ALL, nullptr,
     "Bad seq start %s in class %s"},
    {DPARSE_KEY_LABEL, &TEXT, ALL},
    {DPARSE_KEY_READ_ACCESS, &ACCESS, ALL},
    {DPARSE_KEY_WRITE_ACCESS, &ACCESS, ALL},
    {DPARSE_KEY_CREATE_ACCESS, &WORD, NEVER, DPARSE_CREATE_LEVELS,
     "Invalid Create Access Level '%s'"},
    {DPARSE_KEY_DESCR, &TEXT, ALL},
    {DPARSE_KEY_IS_PARTITIONED, &QUOTED_NUMBER, ALL, nullptr,
     "Bad is_partitioned %s in class %s"},
    {DPARSE_KEY_PARTITION_MODE, &EXACT_WORD, ALL, DPARSE_PARTITION_MODES,
     "Invalid Partition_mode '%s'"},
    {DPARSE_KEY_RESIDENCY_TYPE, &QUOTED_NUMBER, NEVER, nullptr,
     "Bad residency_type %s in class %s"},
    {DPARSE_KEY_AUDIT_SCHEME, &FOLDED_WORD, ALL, DPARSE_AUDIT_SCHEMES, BAD_AUDIT_SCHEME},
    {DPARSE_KEY_EVENT_TYPE, &TEXT, ALL},
    {DPARSE_KEY_VIRTUAL_FLAG, &QUOTED_NUMBER, ALL, nullptr,
     "Bad virtual_flag %s in class %s"},

    {DPARSE_KEY_ORDER, &ORDER, ALL, nullptr,
     "Invalid order number '%s'", "Order number expected instead of '%s'"},
    {DPARSE_KEY_LENGTH, &LENGTH, ALL, nullptr,
     "Invalid length value '%s'", "Length value expected instead of '%s'"},
    {DPARSE_KEY_CREATE, &WORD, ALL, DPARSE_CREATE_PERMISSIONS, "Invalid Create Permission '%s'"},
    {DPARSE_KEY_MODIFY, &WORD, ALL, DPARSE_MODIFY_PERMISSIONS, "Invalid Modify Permission '%s'"},
    {DPARSE_KEY_AUDITABLE, &ZERO_ONE, ALL},
    {DPARSE_KEY_ENCRYPTABLE, &ZERO_ONE, ALL},
    {DPARSE_KEY_SERIALIZABLE, &ZERO_ONE, ALL},
    // No audit scheme is involved in these two; the message is deliberate.
    {DPARSE_KEY_QUERYABLE_ON_AUDIT, &YES_NO, ALL, DPARSE_YES_NO, BAD_AUDIT_SCHEME,
     "Invalid Value '%s'"},
    {DPARSE_KEY_IGNORE_ON_AUDIT, &YES_NO, ALL, DPARSE_YES_NO, BAD_AUDIT_SCHEME,
     "Invalid Value '%s'"},

    {DPARSE_KEY_SQL_TABLE, &TABLE, SQL_CLASS, nullptr,
     "table name \"%s\" is too long. len=%d, max len=%d"},
    {DPARSE_KEY_SQL_COLUMN, &COLUMN, NEVER, nullptr, LONG_COLUMN},
    {DPARSE_KEY_SQL_COLUMN_PREFIX, &COLUMN, NEVER, nullptr, LONG_COLUMN},
    {DPARSE_KEY_SQL_STORAGE, &TEXT, SQL_CLASS},

    {DPARSE_KEY_LOCATION, &TEXT, NEVER},
    {DPARSE_KEY_ATTRVAL, &ATTRVAL, NEVER},
    {DPARSE_KEY_ENTRY_TYPE, &TEXT, NEVER},
    {DPARSE_KEY_LINK_OBJECT, &TEXT, NEVER},
    {DPARSE_KEY_ATTRIBUTE, &TEXT, NEVER},
    {DPARSE_KEY_MULTIVALUED, &ZERO_ONE, NEVER},
    {DPARSE_KEY_RDN_PIECE, &NUMBER, NEVER, nullptr,
     "Invalid value for RDN_PIECE '%s'", DPARSE_ZERO_OR_ONE_EXPECTED},
    {DPARSE_KEY_LINK_ATTRIBUTE, &NUMBER, NEVER, nullptr,
     "Invalid value for LINK_ATTRIBUTE '%s'", DPARSE_ZERO_OR_ONE_EXPECTED},
    {DPARSE_KEY_OBJECTCLASS, &OBJECTCLASS, NEVER, nullptr,
     "Attribute cannot belong to %d objectclasses"},
};
// clang-format on

constexpr uint32_t field_read(const dd_attribute& row) {
  return row.kind == dd_value_kind::TEXTS ? row.text : row.field;
}

constexpr dparse_attribute joined(const spelling& how) {
  dparse_attribute result{how.token,      0,         how.form,    0,
                          how.written_in, how.words, how.refused, how.expected};
  for (const dd_attribute& row : DD_ATTRIBUTES) {
    if (row.keyword != how.token) continue;
    result.field = field_read(row);
    result.read_in |= row.contexts;
  }
  return result;
}

constexpr auto ROWS = [] {
  std::array<dparse_attribute, std::size(SPELLINGS)> rows{};
  std::ranges::transform(SPELLINGS, rows.begin(), joined);
  return rows;
}();

static_assert(std::ranges::all_of(DD_ATTRIBUTES,
                                  [](const dd_attribute& row) {
                                    return row.keyword == DD_KEY_NONE ||
                                           std::ranges::count(SPELLINGS, row.keyword,
                                                              &spelling::token) == 1;
                                  }),
              "an attribute of dd/attributes.h has no row here, or more than one");
static_assert(std::ranges::none_of(ROWS,
                                   [](const dparse_attribute& row) { return row.field == 0; }),
              "a row here is no attribute of dd/attributes.h");
static_assert(std::ranges::all_of(DD_ATTRIBUTES,
                                  [](const dd_attribute& row) {
                                    return row.keyword == DD_KEY_NONE ||
                                           joined({row.keyword, nullptr, 0}).field ==
                                               field_read(row);
                                  }),
              "a keyword stands for two fields");
#ifndef __SANITIZE_ADDRESS__  // with which g++ compares no function's address at compile time
static_assert(std::ranges::all_of(ROWS,
                                  [](const dparse_attribute& row) {
                                    return row.written_in == NEVER || row.form->write != nullptr;
                                  }),
              "a row here is written in a form that cannot be written");
#endif

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
