#include "dparse/attributes.h"

#include <algorithm>
#include <array>

#include "dparse/read/forms.h"
#include "dparse/read/messages.h"
#include "dparse/write/forms.h"

namespace dparse {

namespace {

//                                 read                   written
constexpr value_form TEXT{read_text, write_text};
constexpr value_form QUOTED_NUMBER{read_quoted_number, write_quoted_number, false, "ss"};
constexpr value_form SEQ_START{read_seq_start, write_seq_start, false, "ss"};
constexpr value_form ACCESS{read_access, write_text};
constexpr value_form WORD{read_word, write_bare_text};
constexpr value_form EXACT_WORD{read_exact_word, write_text};
constexpr value_form FOLDED_WORD{read_folded_word, write_text};
constexpr value_form YES_NO{read_yes_no, write_yes};
constexpr value_form ZERO_ONE{read_zero_one, write_number};
constexpr value_form NUMBER{read_number, nullptr};
constexpr value_form ID{read_id, write_number, true};
constexpr value_form LENGTH{read_length, write_number_above_none};
constexpr value_form ORDER{read_order, write_order};
constexpr value_form TABLE{read_table, write_text, false, "sdd"};
constexpr value_form COLUMN{read_column, nullptr, false, "sdd"};
constexpr value_form ATTRVAL{read_attrval, nullptr};
constexpr value_form OBJECTCLASS{read_objectclass, nullptr, false, "d"};

// Where an attribute is written: nowhere, wherever it is read, or only there.
constexpr unsigned NEVER = 0;
constexpr unsigned ALL = ~0u;
constexpr unsigned SQL_CLASS = DD_IN_SQL_CLASS;

struct spelling {
  int token;
  const value_form* form;
  unsigned written_in;
  const value_word* words = nullptr;
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
    {DPARSE_KEY_CREATE_ACCESS, &WORD, NEVER, CREATE_LEVELS,
     message::INVALID_CREATE_ACCESS},
    {DPARSE_KEY_DESCR, &TEXT, ALL},
    {DPARSE_KEY_IS_PARTITIONED, &QUOTED_NUMBER, ALL, nullptr,
     message::INVALID_IS_PARTITIONED},
    {DPARSE_KEY_PARTITION_MODE, &EXACT_WORD, ALL, PARTITION_MODES,
     message::INVALID_PARTITION_MODE},
    {DPARSE_KEY_RESIDENCY_TYPE, &QUOTED_NUMBER, NEVER, nullptr,
     message::INVALID_RESIDENCY_TYPE},
    {DPARSE_KEY_AUDIT_SCHEME, &FOLDED_WORD, ALL, AUDIT_SCHEMES, message::INVALID_AUDIT_SCHEME},
    {DPARSE_KEY_EVENT_TYPE, &TEXT, ALL},
    {DPARSE_KEY_VIRTUAL_FLAG, &QUOTED_NUMBER, ALL, nullptr,
     message::INVALID_VIRTUAL_FLAG},

    {DPARSE_KEY_ORDER, &ORDER, ALL, nullptr,
     message::INVALID_ORDER, message::ORDER_EXPECTED},
    {DPARSE_KEY_LENGTH, &LENGTH, ALL, nullptr,
     message::INVALID_LENGTH, message::LENGTH_EXPECTED},
    {DPARSE_KEY_CREATE, &WORD, ALL, CREATE_PERMISSIONS, message::INVALID_CREATE_PERMISSION},
    {DPARSE_KEY_MODIFY, &WORD, ALL, MODIFY_PERMISSIONS, message::INVALID_MODIFY_PERMISSION},
    {DPARSE_KEY_AUDITABLE, &ZERO_ONE, ALL},
    {DPARSE_KEY_ENCRYPTABLE, &ZERO_ONE, ALL},
    {DPARSE_KEY_SERIALIZABLE, &ZERO_ONE, ALL},
    // No audit scheme is involved in these two; the message is deliberate.
    {DPARSE_KEY_QUERYABLE_ON_AUDIT, &YES_NO, ALL, YES_OR_NO, message::INVALID_AUDIT_SCHEME,
     message::INVALID_YES_NO},
    {DPARSE_KEY_IGNORE_ON_AUDIT, &YES_NO, ALL, YES_OR_NO, message::INVALID_AUDIT_SCHEME,
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
  return which == message::NONE || dparse::takes(row_of(which).text, letters);
}

constexpr uint32_t field_read(const dd_attribute& row) {
  return row.kind == dd_value_kind::TEXTS ? row.text : row.field;
}

constexpr attribute joined(const spelling& how) {
  attribute result{how.token, 0, how.form, 0, how.written_in, how.words, how.refused, how.expected};
  for (const dd_attribute& row : DD_ATTRIBUTES) {
    if (row.keyword != how.token) continue;
    result.field = field_read(row);
    result.read_in |= row.contexts;
  }
  return result;
}

constexpr auto ROWS = [] {
  std::array<attribute, std::size(SPELLINGS)> rows{};
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
static_assert(std::ranges::none_of(ROWS, [](const attribute& row) { return row.field == 0; }),
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
                                  [](const attribute& row) {
                                    return row.written_in == NEVER || row.form->write != nullptr;
                                  }),
              "a row here is written in a form that cannot be written");
#endif

static_assert(std::ranges::all_of(ROWS,
                                  [](const attribute& row) {
                                    return takes(row.refused, row.form->refused_takes) &&
                                           takes(row.expected, "s");
                                  }),
              "a message here has other conversions than its form fills");

constexpr auto ROW_OF_TOKEN = [] {
  std::array<const attribute*, TOKEN_NUMBERS> rows{};
  for (const attribute& row : ROWS) rows[static_cast<size_t>(row.token)] = &row;
  return rows;
}();

}  // namespace

std::span<const attribute> attributes() {
  return ROWS;
}

const attribute* find_attribute(int token, unsigned context) {
  const attribute* row = ROW_OF_TOKEN[static_cast<size_t>(token)];
  return row != nullptr && (row->read_in & context) != 0 ? row : nullptr;
}

}  // namespace dparse
