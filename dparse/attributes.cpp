#include "dparse/attributes.h"

#include <algorithm>
#include <array>

#include "dparse/read/forms.h"
#include "dparse/read/messages.h"
#include "dparse/write/forms.h"

using dparse::message;

namespace {

//                                 read                   written
constexpr dparse_form TEXT{dparse_read_text, dparse_write_text};
constexpr dparse_form QUOTED_NUMBER{dparse_read_quoted_number, dparse_write_quoted_number, false,
                                    "ss"};
constexpr dparse_form SEQ_START{dparse_read_seq_start, dparse_write_seq_start, false, "ss"};
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
constexpr dparse_form TABLE{dparse_read_table, dparse_write_text, false, "sdd"};
constexpr dparse_form COLUMN{dparse_read_column, nullptr, false, "sdd"};
constexpr dparse_form ATTRVAL{dparse_read_attrval, nullptr};
constexpr dparse_form OBJECTCLASS{dparse_read_objectclass, nullptr, false, "d"};

// Where an attribute is written: nowhere, wherever it is read, or only there.
constexpr unsigned NEVER = 0;
constexpr unsigned ALL = ~0u;
constexpr unsigned SQL_CLASS = DD_IN_SQL_CLASS;

struct spelling {
  int token;
  const dparse_form* form;
  unsigned written_in;
  const dparse_word* words = nullptr;
  message refused = message::NONE;
  message expected = message::NONE;
};

// In the order in which they are written.
// clang-format off
constexpr spelling SPELLINGS[] = {
    {DPARSE_KEY_ID, &ID, ALL, nullptr,
     message::INVALID_ID, message::ID_EXPECTED},

    {DPARSE_KEY_SEQ_START, &SEQ_START, ALL, nullptr,
     message::INVALID_SEQ_START},
    {DPARSE_KEY_LABEL, &TEXT, ALL},
    {DPARSE_KEY_READ_ACCESS, &ACCESS, ALL},
    {DPARSE_KEY_WRITE_ACCESS, &ACCESS, ALL},
    {DPARSE_KEY_CREATE_ACCESS, &WORD, NEVER, DPARSE_CREATE_LEVELS,
     message::INVALID_CREATE_ACCESS},
    {DPARSE_KEY_DESCR, &TEXT, ALL},
    {DPARSE_KEY_IS_PARTITIONED, &QUOTED_NUMBER, ALL, nullptr,
     message::INVALID_IS_PARTITIONED},
    {DPARSE_KEY_PARTITION_MODE, &EXACT_WORD, ALL, DPARSE_PARTITION_MODES,
     message::INVALID_PARTITION_MODE},
    {DPARSE_KEY_RESIDENCY_TYPE, &QUOTED_NUMBER, NEVER, nullptr,
     message::INVALID_RESIDENCY_TYPE},
    {DPARSE_KEY_AUDIT_SCHEME, &FOLDED_WORD, ALL, DPARSE_AUDIT_SCHEMES, message::INVALID_AUDIT_SCHEME},
    {DPARSE_KEY_EVENT_TYPE, &TEXT, ALL},
    {DPARSE_KEY_VIRTUAL_FLAG, &QUOTED_NUMBER, ALL, nullptr,
     message::INVALID_VIRTUAL_FLAG},

    {DPARSE_KEY_ORDER, &ORDER, ALL, nullptr,
     message::INVALID_ORDER, message::ORDER_EXPECTED},
    {DPARSE_KEY_LENGTH, &LENGTH, ALL, nullptr,
     message::INVALID_LENGTH, message::LENGTH_EXPECTED},
    {DPARSE_KEY_CREATE, &WORD, ALL, DPARSE_CREATE_PERMISSIONS, message::INVALID_CREATE_PERMISSION},
    {DPARSE_KEY_MODIFY, &WORD, ALL, DPARSE_MODIFY_PERMISSIONS, message::INVALID_MODIFY_PERMISSION},
    {DPARSE_KEY_AUDITABLE, &ZERO_ONE, ALL},
    {DPARSE_KEY_ENCRYPTABLE, &ZERO_ONE, ALL},
    {DPARSE_KEY_SERIALIZABLE, &ZERO_ONE, ALL},
    // No audit scheme is involved in these two; the message is deliberate.
    {DPARSE_KEY_QUERYABLE_ON_AUDIT, &YES_NO, ALL, DPARSE_YES_NO, message::INVALID_AUDIT_SCHEME,
     message::INVALID_YES_NO},
    {DPARSE_KEY_IGNORE_ON_AUDIT, &YES_NO, ALL, DPARSE_YES_NO, message::INVALID_AUDIT_SCHEME,
     message::INVALID_YES_NO},

    {DPARSE_KEY_SQL_TABLE, &TABLE, SQL_CLASS, nullptr,
     message::TABLE_NAME_TOO_LONG},
    {DPARSE_KEY_SQL_COLUMN, &COLUMN, NEVER, nullptr, message::COLUMN_NAME_TOO_LONG},
    {DPARSE_KEY_SQL_COLUMN_PREFIX, &COLUMN, NEVER, nullptr, message::COLUMN_NAME_TOO_LONG},
    {DPARSE_KEY_SQL_STORAGE, &TEXT, SQL_CLASS},

    {DPARSE_KEY_LOCATION, &TEXT, NEVER},
    {DPARSE_KEY_ATTRVAL, &ATTRVAL, NEVER},
    {DPARSE_KEY_ENTRY_TYPE, &TEXT, NEVER},
    {DPARSE_KEY_LINK_OBJECT, &TEXT, NEVER},
    {DPARSE_KEY_ATTRIBUTE, &TEXT, NEVER},
    {DPARSE_KEY_MULTIVALUED, &ZERO_ONE, NEVER},
    {DPARSE_KEY_RDN_PIECE, &NUMBER, NEVER, nullptr,
     message::INVALID_RDN_PIECE, message::ZERO_OR_ONE_EXPECTED},
    {DPARSE_KEY_LINK_ATTRIBUTE, &NUMBER, NEVER, nullptr,
     message::INVALID_LINK_ATTRIBUTE, message::ZERO_OR_ONE_EXPECTED},
    {DPARSE_KEY_OBJECTCLASS, &OBJECTCLASS, NEVER, nullptr,
     message::SEVERAL_OBJECTCLASSES},
};
// clang-format on

constexpr bool takes(message which, std::string_view letters) {
  return which == message::NONE || dparse::takes(dparse::row_of(which).text, letters);
}

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

static_assert(std::ranges::all_of(ROWS,
                                  [](const dparse_attribute& row) {
                                    return takes(row.refused, row.form->refused_takes) &&
                                           takes(row.expected, "s");
                                  }),
              "a message here has other conversions than its form fills");

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
