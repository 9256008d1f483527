// How lint tells what the reader refuses: a row for each of its messages, in their order.
#ifndef LINT_SYNTAX_SENTENCES_H
#define LINT_SYNTAX_SENTENCES_H

#include <algorithm>
#include <iterator>
#include <string_view>

#include "dparse/read/messages.h"

namespace lint {

// In a text stand {value} for what is there, {before} for the token in front of it, {keyword} for
// that of the attribute, {choices} for the words that it takes, {thing} for the definition or entry
// around it, {name} for the name of the definition, {there} for the first definition, {type}, {id},
// {first_type} and {first_id} for what the two say, and {reader} for the reader's own words.
struct syntax_row {
  dparse::message which;
  std::string_view title;
  std::string_view text;
};

// clang-format off
inline constexpr syntax_row SYNTAX_SENTENCES[] = {
    {dparse::message::STRING_NOT_CLOSED, "A string is not closed",
     "The string {value} is not closed: write \" at its end, on the same line."},
    {dparse::message::WORD_TOO_LONG, "A word is too long",
     "The word {value} is too long: it may have at most 2046 bytes."},
    {dparse::message::EQUALS_EXPECTED, "\"=\" is missing",
     "\"=\" is missing behind {before}."},
    {dparse::message::SEMICOLON_EXPECTED, "\";\" is missing",
     "\";\" is missing behind {before}."},
    {dparse::message::OPENING_BRACE_EXPECTED, "\"{\" is missing",
     "\"{\" is missing behind {before}."},
    {dparse::message::CLOSING_BRACE_EXPECTED, "\"}\" is missing",
     "\"}\" is missing behind {before}: {thing} is not closed."},
    {dparse::message::QUOTED_STRING_EXPECTED, "A value is no text in quotes",
     "{keyword} needs a text in quotes, not {value}."},
    {dparse::message::STRING_TOO_LONG, "A text is too long",
     "The text of {keyword} is too long: all its strings together may have at most 2047 bytes."},
    {dparse::message::SEMICOLON_EXPECTED_AFTER_STRING, "\";\" is missing behind a text",
     "\";\" is missing behind {before}."},
    {dparse::message::ZERO_OR_ONE_EXPECTED, "A value is neither 0 nor 1",
     "{keyword} needs 0 or 1, not {value}."},
    {dparse::message::INVALID_ZERO_OR_ONE, "A number is neither 0 nor 1",
     "{keyword} needs 0 or 1, not {value}."},
    {dparse::message::INVALID_ACCESS_LEVEL, "A value is no access level",
     "{keyword} needs one of {choices}, not {value}."},
    {dparse::message::ID_EXPECTED, "An ID is no number",
     "{keyword} needs a number, not {value}."},
    {dparse::message::INVALID_ID, "An ID is out of range",
     "{keyword} needs a number from 1 to 16777215, not {value}."},
    {dparse::message::INVALID_SEQ_START, "SEQ_START is no number",
     "{keyword} needs a number in quotes, not {value}."},
    {dparse::message::SEQ_START_IN_SUBCLASS, "A subclass has SEQ_START",
     "{thing} is a subclass and may not have SEQ_START: only base classes may."},
    {dparse::message::INVALID_CREATE_ACCESS, "CREATE_ACCESS has a value that it does not take",
     "{keyword} needs one of {choices}, not {value}."},
    {dparse::message::INVALID_IS_PARTITIONED, "IS_PARTITIONED is no number",
     "{keyword} needs a number in quotes, not {value}."},
    {dparse::message::INVALID_PARTITION_MODE, "PARTITION_MODE has a value that it does not take",
     "{keyword} needs one of {choices}, not {value}."},
    {dparse::message::INVALID_RESIDENCY_TYPE, "RESIDENCY_TYPE is no number",
     "{keyword} needs a number in quotes, not {value}."},
    {dparse::message::INVALID_AUDIT_SCHEME, "An audit scheme has a value that it does not take",
     "{keyword} needs one of {choices}, not {value}."},
    {dparse::message::INVALID_VIRTUAL_FLAG, "A flag is no number",
     "{keyword} needs a number in quotes, not {value}."},
    {dparse::message::ORDER_EXPECTED, "ORDER is no number",
     "{keyword} needs a number, not {value}."},
    {dparse::message::INVALID_ORDER, "ORDER is not a number that can be read",
     "{keyword} needs a number, not {value}."},
    {dparse::message::LENGTH_EXPECTED, "LENGTH is no number",
     "{keyword} needs a number, not {value}."},
    {dparse::message::INVALID_LENGTH, "LENGTH is out of range",
     "{keyword} needs a number from 0 to 2147483647, not {value}."},
    {dparse::message::INVALID_CREATE_PERMISSION, "CREATE has a value that it does not take",
     "{keyword} needs one of {choices}, not {value}."},
    {dparse::message::INVALID_MODIFY_PERMISSION, "MODIFY has a value that it does not take",
     "{keyword} needs one of {choices}, not {value}."},
    {dparse::message::INVALID_YES_NO, "A value is neither YES nor NO",
     "{keyword} needs YES or NO, not {value}."},
    {dparse::message::TABLE_NAME_TOO_LONG, "The name of a table is too long",
     "{reader}: choose a shorter name."},
    {dparse::message::COLUMN_NAME_TOO_LONG, "The name of a column is too long",
     "{reader}: choose a shorter name."},
    {dparse::message::INVALID_RDN_PIECE, "RDN_PIECE has a value that it does not take",
     "{keyword} does not take {value}."},
    {dparse::message::INVALID_LINK_ATTRIBUTE, "LINK_ATTRIBUTE has a value that it does not take",
     "{keyword} does not take {value}."},
    {dparse::message::SEVERAL_OBJECTCLASSES, "OBJECTCLASS is given more than once",
     "{thing} has OBJECTCLASS more than once: keep one."},
    {dparse::message::INVALID_TOKEN, "Something begins no definition",
     "{value} begins no definition: a type such as STRING or INT does, or STORABLE CLASS."},
    {dparse::message::NAME_EXPECTED, "The name of a field is missing",
     "{before} needs the name of a field behind it, not {value}."},
    {dparse::message::FIELD_BRACE_EXPECTED, "\"{\" of a field definition is missing",
     "\"{\" is missing behind {before}."},
    {dparse::message::UNKNOWN_FIELD_ATTRIBUTE, "A field definition has an attribute that it may not have",
     "{value} is no attribute of a field definition ({thing}): it has ID and DESCR."},
    {dparse::message::ID_NOT_READ, "An ID cannot be read",
     "{keyword} needs a number from 1 to 16777215, not {value}."},
    {dparse::message::FIELD_ATTRIBUTE_NOT_READ, "An attribute of a field cannot be read",
     "{keyword} does not take {value}."},
    {dparse::message::DUPLICATE_FIELD_TYPES, "A field is defined twice, with different types",
     "{name} is {type} here and {first_type} where it is defined first{there}: keep one definition."},
    {dparse::message::FIELD_TYPE_DIFFERS, "A field is defined again with another type",
     "{name} is {type} here and {first_type} where it is defined first{there}: keep one definition."},
    {dparse::message::DUPLICATE_FIELD_IDS, "A field is defined twice, with different numbers",
     "{name} has ID {id} here and {first_id} where it is defined first{there}: keep one definition."},
    {dparse::message::FIELD_ID_DIFFERS, "A field is defined again with another number",
     "{name} has ID {id} here and {first_id} where it is defined first{there}: keep one definition."},
    {dparse::message::CLASS_EXPECTED, "CLASS is missing behind STORABLE",
     "{before} needs CLASS behind it, not {value}."},
    {dparse::message::CLASS_NAME_EXPECTED, "The name of a class is missing",
     "{before} needs the name of a class behind it, not {value}."},
    {dparse::message::DUPLICATE_CLASS, "A class is defined twice",
     "The {part} of class {name} is defined already{there}: keep one of them."},
    {dparse::message::DUPLICATE_INTERFACE, "The interface of a class is defined twice",
     "The {part} of class {name} is defined already{there}: keep one of them."},
    {dparse::message::DUPLICATE_IMPLEMENTATION, "The implementation of a class is defined twice",
     "The {part} of class {name} is defined already{there}: keep one of them."},
    {dparse::message::IMPLEMENTATION_NAME_EXPECTED, "The kind of an implementation is missing",
     "{before} needs TESSEL7 or LDAPV3 behind it, not {value}."},
    {dparse::message::UNKNOWN_IMPLEMENTATION, "An implementation is of an unknown kind",
     "{value} is no kind of implementation: write TESSEL7 or LDAPV3."},
    {dparse::message::UNKNOWN_CLASS_MEMBER, "A class has something that it may not have",
     "{value} may not stand in {thing}: neither such an attribute nor such a type may."},
    {dparse::message::INTERFACE_NOT_READ, "An interface cannot be read", "{reader}."},
    {dparse::message::IMPLEMENTATION_NOT_READ, "An implementation cannot be read", "{reader}."},
    {dparse::message::FIELD_NAME_EXPECTED, "The name of an entry is missing",
     "{before} needs the name of a field behind it, not {value}."},
    {dparse::message::INVALID_TYPE, "A type may not be used",
     "{value} is no type that an entry can have."},
    {dparse::message::UNKNOWN_ENTRY_MEMBER, "An entry has something that it may not have",
     "{value} may not stand in {thing}: neither such an attribute nor such a type may."},
    {dparse::message::UNKNOWN_STORAGE_MEMBER, "The storage of an entry has something that it may not have",
     "{value} may not stand in {thing}: neither such an attribute nor such a type may."},
    {dparse::message::MEMBER_NOT_READ, "A part of an entry cannot be read", "{reader}."},
    {dparse::message::ENTRIES_TOO_DEEP, "Entries are nested too deep", "{reader}."},
    {dparse::message::INTERNAL_ERROR, "The reader failed", "{reader}."},
};
// clang-format on

constexpr bool stands_at_its_place(const syntax_row& row) {
  return &row - SYNTAX_SENTENCES == static_cast<ptrdiff_t>(row.which) - 1;
}
static_assert(std::size(SYNTAX_SENTENCES) == std::size(dparse::MESSAGES) &&
                  std::ranges::all_of(SYNTAX_SENTENCES, stands_at_its_place),
              "a message of the reader has no sentence, or one at another's place");

constexpr const syntax_row& sentence_row_of(dparse::message which) {
  return SYNTAX_SENTENCES[static_cast<size_t>(which) - 1];
}

}  // namespace lint

#endif
