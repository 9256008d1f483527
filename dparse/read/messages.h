// All that the reader says, each text once: what stands in the error state and in the log.
//
// dparse::MESSAGES is the table: for (const dparse::message_row& row : dparse::MESSAGES) gives all
// rows, in the order below. An id is part of the interface: never changed, never given to another
// message. The conversions in a text are %s and %d, bare.
#ifndef DPARSE_READ_MESSAGES_H
#define DPARSE_READ_MESSAGES_H

#include <algorithm>
#include <iterator>
#include <string_view>

#include "dparse/failures.h"

// name, id, text
// clang-format off
#define DPARSE_MESSAGES(ROW)                                                                       \
  /* Tokens. */                                                                                    \
  ROW(STRING_NOT_CLOSED, "string-not-closed", "Expecting \"")                                      \
  ROW(WORD_TOO_LONG, "word-too-long", "Buffer overflow, tokens are limited to 2048 characters")    \
  ROW(EQUALS_EXPECTED, "equals-expected", "= Expected")                                            \
  ROW(SEMICOLON_EXPECTED, "semicolon-expected", "; Expected")                                      \
  ROW(OPENING_BRACE_EXPECTED, "opening-brace-expected", "{ Expected")                              \
  ROW(CLOSING_BRACE_EXPECTED, "closing-brace-expected", "} Expected")                              \
  /* Values. */                                                                                    \
  ROW(QUOTED_STRING_EXPECTED, "quoted-string-expected",                                            \
      "Quoted string (ie, \"abc\") expected instead of '%s'")                                      \
  ROW(STRING_TOO_LONG, "string-too-long",                                                          \
      "Buffer overflow, tokens cannot exceed 2048 characters, parsing %s")                         \
  ROW(SEMICOLON_EXPECTED_AFTER_STRING, "semicolon-expected-after-string",                          \
      "; expected after parsing string %s,")                                                       \
  /* Also for numbers that may be greater than 1: deliberate. */                                   \
  ROW(ZERO_OR_ONE_EXPECTED, "zero-or-one-expected", "0 or 1 expected instead of '%s'")             \
  ROW(INVALID_ZERO_OR_ONE, "invalid-zero-or-one", "Invalid value for multivalued '%s'")            \
  ROW(INVALID_ACCESS_LEVEL, "invalid-access-level", "Invalid Read/Write Access Level '%s'")        \
  ROW(ID_EXPECTED, "id-expected", "Id number expected instead of '%s'")                            \
  ROW(INVALID_ID, "invalid-id", "Invalid ID number '%s'")                                          \
  ROW(INVALID_SEQ_START, "invalid-seq-start", "Bad seq start %s in class %s")                      \
  ROW(SEQ_START_IN_SUBCLASS, "seq-start-in-subclass", "seq start found in non-base class %s")      \
  ROW(INVALID_CREATE_ACCESS, "invalid-create-access", "Invalid Create Access Level '%s'")          \
  ROW(INVALID_IS_PARTITIONED, "invalid-is-partitioned", "Bad is_partitioned %s in class %s")       \
  ROW(INVALID_PARTITION_MODE, "invalid-partition-mode", "Invalid Partition_mode '%s'")             \
  ROW(INVALID_RESIDENCY_TYPE, "invalid-residency-type", "Bad residency_type %s in class %s")       \
  ROW(INVALID_AUDIT_SCHEME, "invalid-audit-scheme", "Invalid Audit Scheme '%s'")                   \
  ROW(INVALID_VIRTUAL_FLAG, "invalid-virtual-flag", "Bad virtual_flag %s in class %s")             \
  ROW(ORDER_EXPECTED, "order-expected", "Order number expected instead of '%s'")                   \
  ROW(INVALID_ORDER, "invalid-order", "Invalid order number '%s'")                                 \
  ROW(LENGTH_EXPECTED, "length-expected", "Length value expected instead of '%s'")                 \
  ROW(INVALID_LENGTH, "invalid-length", "Invalid length value '%s'")                               \
  ROW(INVALID_CREATE_PERMISSION, "invalid-create-permission", "Invalid Create Permission '%s'")    \
  ROW(INVALID_MODIFY_PERMISSION, "invalid-modify-permission", "Invalid Modify Permission '%s'")    \
  ROW(INVALID_YES_NO, "invalid-yes-no", "Invalid Value '%s'")                                      \
  ROW(TABLE_NAME_TOO_LONG, "table-name-too-long",                                                  \
      "table name \"%s\" is too long. len=%d, max len=%d")                                         \
  ROW(COLUMN_NAME_TOO_LONG, "column-name-too-long",                                                \
      "column name \"%s\" is too long. len=%d, max len=%d")                                        \
  ROW(INVALID_RDN_PIECE, "invalid-rdn-piece", "Invalid value for RDN_PIECE '%s'")                  \
  ROW(INVALID_LINK_ATTRIBUTE, "invalid-link-attribute", "Invalid value for LINK_ATTRIBUTE '%s'")   \
  ROW(SEVERAL_OBJECTCLASSES, "several-objectclasses",                                              \
      "Attribute cannot belong to %d objectclasses")                                               \
  /* Field definitions. */                                                                         \
  ROW(INVALID_TOKEN, "invalid-token", "Invalid token '%s'")                                        \
  ROW(NAME_EXPECTED, "name-expected", "Class or field name expected")                              \
  /* The small "e" of this one is deliberate. */                                                   \
  ROW(FIELD_BRACE_EXPECTED, "field-brace-expected", "{ expected")                                  \
  ROW(UNKNOWN_FIELD_ATTRIBUTE, "unknown-field-attribute", "Invalid Attribute '%s'")                \
  ROW(ID_NOT_READ, "id-not-read", "Error: Unable to parse field id")                               \
  ROW(FIELD_ATTRIBUTE_NOT_READ, "field-attribute-not-read", "Error: while parsing %s")             \
  ROW(DUPLICATE_FIELD_TYPES, "duplicate-field-types",                                              \
      "Duplicate field %s in input with different types")                                          \
  ROW(FIELD_TYPE_DIFFERS, "field-type-differs", "Duplicate field %s in input, different type")     \
  ROW(DUPLICATE_FIELD_IDS, "duplicate-field-ids",                                                  \
      "Duplicate field %s in input with different id")                                             \
  ROW(FIELD_ID_DIFFERS, "field-id-differs", "Duplicate Field %s, with different id")               \
  /* Classes. */                                                                                   \
  ROW(CLASS_EXPECTED, "class-expected", "Expecting keyword 'class'")                               \
  ROW(CLASS_NAME_EXPECTED, "class-name-expected", "Class name expected")                           \
  ROW(DUPLICATE_CLASS, "duplicate-class", "Duplicate storable class in input: %s")                 \
  ROW(DUPLICATE_INTERFACE, "duplicate-interface", "Duplicate Class in input, %s")                  \
  ROW(DUPLICATE_IMPLEMENTATION, "duplicate-implementation",                                        \
      "Duplicate storable class implementation")                                                   \
  ROW(IMPLEMENTATION_NAME_EXPECTED, "implementation-name-expected",                                \
      "implementation name expected")                                                              \
  ROW(UNKNOWN_IMPLEMENTATION, "unknown-implementation", "unknown implementation %s")               \
  /* The misspelling is deliberate. */                                                             \
  ROW(UNKNOWN_CLASS_MEMBER, "unknown-class-member", "Invalide Attribute or field type '%s'")       \
  ROW(INTERFACE_NOT_READ, "interface-not-read",                                                    \
      "Error: Unable to parse storable class interface definition")                                \
  ROW(IMPLEMENTATION_NOT_READ, "implementation-not-read",                                          \
      "Error: Unable to parse storable class implementation definition")                           \
  /* Field entries. */                                                                             \
  ROW(FIELD_NAME_EXPECTED, "field-name-expected", "Expecting Field Name instead of '%s'")          \
  ROW(INVALID_TYPE, "invalid-type", INVALID_TYPE_TEXT)                                             \
  ROW(UNKNOWN_ENTRY_MEMBER, "unknown-entry-member",                                                \
      "Invalid Attribute or field type (token=%d) '%s'")                                           \
  ROW(UNKNOWN_STORAGE_MEMBER, "unknown-storage-member", "Invalid Attribute or field type '%s'")    \
  ROW(MEMBER_NOT_READ, "member-not-read", "Error: Unable to parse field")                          \
  ROW(ENTRIES_TOO_DEEP, "entries-too-deep",                                                        \
      "Field entries are nested too deep, the limit is %d levels")                                 \
  /* Anywhere. */                                                                                  \
  ROW(INTERNAL_ERROR, "internal-error", INTERNAL_ERROR_TEXT)
// clang-format on

namespace dparse {

#define DPARSE_MESSAGE_NAME(name, id, text) name,
enum class message : unsigned char { NONE, DPARSE_MESSAGES(DPARSE_MESSAGE_NAME) };
#undef DPARSE_MESSAGE_NAME

struct message_row {
  const char* id;
  const char* text;
};

#define DPARSE_MESSAGE_ROW(name, id, text) {id, text},
inline constexpr message_row MESSAGES[] = {DPARSE_MESSAGES(DPARSE_MESSAGE_ROW)};
#undef DPARSE_MESSAGE_ROW

// The row of a message that is not NONE.
constexpr const message_row& row_of(message which) {
  return MESSAGES[static_cast<size_t>(which) - 1];
}

// Whether the text's conversions are these letters, in this order.
constexpr bool takes(std::string_view text, std::string_view letters) {
  for (size_t at = text.find('%'); at != text.npos; at = text.find('%', at + 1)) {
    if (letters.empty() || text.substr(at + 1, 1) != letters.substr(0, 1)) return false;
    letters.remove_prefix(1);
  }
  return letters.empty();
}

constexpr bool has_text_of_its_own(const message_row& row) {
  return std::ranges::count(MESSAGES, std::string_view(row.text),
                            [](const message_row& other) { return other.text; }) == 1;
}
constexpr bool has_id_of_its_own(const message_row& row) {
  return std::ranges::count(MESSAGES, std::string_view(row.id),
                            [](const message_row& other) { return other.id; }) == 1;
}
static_assert(std::ranges::all_of(MESSAGES, has_text_of_its_own), "a text stands twice");
static_assert(std::ranges::all_of(MESSAGES, has_id_of_its_own), "an id stands twice");

}  // namespace dparse

#endif
