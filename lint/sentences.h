// How lint tells what the import finds: a row for each of its findings.
#ifndef LINT_SENTENCES_H
#define LINT_SENTENCES_H

#include <iterator>
#include <string_view>

#include "lint/finding.h"

namespace lint {

// What of the thing that a finding is about is to blame.
enum class blame : uint8_t { NAME, TYPE, VALUE };  // VALUE: of the subject's attribute

// The second place of a finding.
enum class other : uint8_t {
  NONE,
  DEFINITION,  // of the field
  REFUSED,     // the same, which then has a mistake of its own
  NUMBER,      // the field that has the number
  INTERFACE,   // the entry in the class's interface
  RELATED,     // the related class; of an array the entry of that name, of a table its use
  EARLIER,     // the entry of the same name before it
  COLUMN,      // the entry before it that names the column
};

// In a text stand {class}, {related}, {field}, {table}, {column} for those of the subject,
// {type} for the type that the field is used with, {number} and {old} for a field's number (or
// type) here and there, and {there} for the second place; of storage {old} and {new} are the
// dictionary's and the files', and {remedy} says what to do with the two. {owner} and {other_owner}
// have a table, {system} are the attributes that are SYSTEM, and {number_too} tells a number that
// differs as the type does.
struct sentence_row {
  std::string_view id;
  level normal;
  blame at;
  other second;
  std::string_view title;
  std::string_view text;
};

inline constexpr sentence_row SENTENCES[] = {
    {"missing-interface", level::ERROR, blame::NAME, other::NONE,
     "An implementation has no interface",
     "Class {class} has an implementation and no interface: define STORABLE CLASS {class} { ... } "
     "too, or remove the implementation."},
    {"missing-field-interface", level::ERROR, blame::NAME, other::INTERFACE,
     "An implementation names an entry that the interface lacks",
     "The interface of {class} has no entry {field}{there}: add it there, or remove its storage "
     "here."},
    {"implementation-type-mismatch", level::ERROR, blame::TYPE, other::INTERFACE,
     "Interface and implementation give an entry different types",
     "{field} is {type} in the implementation of {class} and {old} in its interface{there}: both "
     "must be the same."},

    {"field-number-in-use", level::ERROR, blame::VALUE, other::NUMBER,
     "A field has the number of another",
     "ID {number} of {field} is that of {related}{there}: choose a number that is free."},
    {"field-type-conflict", level::ERROR, blame::TYPE, other::NONE,
     "A field has another type in the dictionary",
     "{field} is {type} here and {old} in the dictionary, where a field's type cannot change: keep "
     "{old}, or give the field another name and number.{number_too}"},
    {"field-number-conflict", level::ERROR, blame::VALUE, other::NONE,
     "A field has another number in the dictionary",
     "{field} has ID {number} here and {old} in the dictionary, where a field's number cannot "
     "change: keep {old}, or give the field another name."},
    {"field-kept", level::NOTE, blame::NAME, other::NONE, "A field is in the dictionary already",
     "{field} is in the dictionary already, which keeps its own."},
    {"field-description-replaced", level::NOTE, blame::NAME, other::NONE,
     "A field is in the dictionary already",
     "{field} is in the dictionary already: its description would be replaced."},

    {"class-exists", level::NOTE, blame::NAME, other::NONE, "A class is in the dictionary already",
     "Class {class} is in the dictionary already and would be replaced."},
    {"class-table-kept", level::WARNING, blame::VALUE, other::NONE,
     "A class has another table in the dictionary",
     "Class {class} has table {old} in the dictionary and {new} here: a replace keeps the "
     "dictionary's. {remedy}"},
    {"class-storage-kept", level::WARNING, blame::VALUE, other::NONE,
     "A class has another storage clause in the dictionary",
     "Class {class} has the storage clause {old} in the dictionary and {new} here: a replace keeps "
     "the dictionary's. {remedy}"},
    {"buf-table-or-column-kept", level::WARNING, blame::VALUE, other::NONE,
     "A BUF entry has another table or column in the dictionary",
     "{field} in class {class} has table and column {old} in the dictionary and {new} here: a "
     "replace keeps the dictionary's. {remedy}"},
    {"table-kept", level::WARNING, blame::VALUE, other::NONE,
     "An entry has another table in the dictionary",
     "{field} in class {class} has table {old} in the dictionary and {new} here: a replace keeps "
     "the dictionary's. {remedy}"},
    {"column-kept", level::WARNING, blame::VALUE, other::NONE,
     "An entry has another column in the dictionary",
     "{field} in class {class} has column {old} in the dictionary and {new} here: a replace keeps "
     "the dictionary's. {remedy}"},
    {"storage-kept", level::WARNING, blame::VALUE, other::NONE,
     "An entry has another storage clause in the dictionary",
     "{field} in class {class} has the storage clause {old} in the dictionary and {new} here: a "
     "replace keeps the dictionary's. {remedy}"},

    {"class-name-without-slash", level::ERROR, blame::NAME, other::NONE,
     "A class name does not begin with a slash",
     "The name of class {class} does not begin with \"/\": write /{class}."},
    {"missing-superclass", level::ERROR, blame::NAME, other::NONE, "A superclass is missing",
     "Class {class} stands below {related}, which neither the files nor the dictionary have: "
     "define {related} too."},

    {"missing-field-definition", level::ERROR, blame::NAME, other::REFUSED,
     "A class uses a field that is not defined",
     "Class {class} uses {field}, which neither the files nor the dictionary define: define it, or "
     "correct the name."},
    {"field-type-mismatch", level::ERROR, blame::TYPE, other::DEFINITION,
     "A class uses a field with another type",
     "{field} is {type} in class {class} and defined as {old}{there}: both must be the same."},
    {"system-field-in-base-class", level::ERROR, blame::VALUE, other::NONE,
     "An entry of a base class has SYSTEM permission",
     "{field} in class {class} may not have {system}: only TAV_FLD_POID, "
     "TAV_FLD_CREATED_T and the like may."},
    {"system-field-in-subclass", level::ERROR, blame::VALUE, other::NONE,
     "An entry of a subclass has SYSTEM permission",
     "{field} in subclass {class} may not have {system}: remove it."},
    {"field-outside-array", level::ERROR, blame::NAME, other::NONE,
     "A subclass has an entry outside arrays and substructs",
     "{field} stands at the top level of subclass {class}, which may hold only ARRAY and SUBSTRUCT "
     "entries there: put it into one."},
    {"substruct-in-base-class", level::ERROR, blame::TYPE, other::NONE,
     "A base class has a SUBSTRUCT entry",
     "{field} is a SUBSTRUCT of base class {class}: only subclasses may have one."},
    {"illegal-nesting", level::ERROR, blame::NAME, other::NONE,
     "An entry is nested where it may not be",
     "{field} may not stand inside this entry of class {class}: only ARRAY and SUBSTRUCT hold "
     "entries, and an ARRAY stands at most in one other ARRAY."},
    {"nested-substruct", level::ERROR, blame::TYPE, other::NONE, "A SUBSTRUCT entry is nested",
     "{field} is a SUBSTRUCT inside another entry of class {class}: a SUBSTRUCT stands at the top "
     "level only."},
    {"repeated-field", level::ERROR, blame::NAME, other::EARLIER,
     "An entry stands twice in the same entry",
     "{field} stands twice in the same entry of class {class}{there}: remove one."},
    {"array-in-related-class", level::ERROR, blame::NAME, other::RELATED,
     "An array or substruct has the name of one of a superclass or subclass",
     "{field} stands in class {class} and in {related}{there}, along one hierarchy: only one of "
     "them may have it."},

    {"missing-class-table", level::ERROR, blame::NAME, other::NONE, "A base class has no table",
     "Base class {class} has no table: its implementation needs SQL_TABLE."},
    {"table-in-subclass", level::ERROR, blame::VALUE, other::NONE, "A subclass has a table",
     "Subclass {class} has table {table} in the dictionary, and needs none."},
    {"field-not-defined", level::ERROR, blame::NAME, other::REFUSED,
     "The storage of a field that is not defined cannot be checked",
     "{field} is not defined, so that its storage cannot be checked: define it, or correct the "
     "name."},
    {"field-without-type", level::ERROR, blame::NAME, other::NONE, "A field has no type",
     "{field} is defined without a type, so that its storage cannot be checked."},
    {"missing-table", level::ERROR, blame::NAME, other::NONE, "An array or substruct has no table",
     "{field} in class {class} is an array or substruct and has no table: its implementation needs "
     "SQL_TABLE."},
    {"missing-buf-storage", level::ERROR, blame::NAME, other::NONE,
     "A BUF entry has neither table nor column",
     "{field} in class {class} is a BUF and has neither table nor column: its implementation needs "
     "SQL_TABLE and SQL_COLUMN."},
    {"missing-buf-table", level::ERROR, blame::NAME, other::NONE, "A BUF entry has no table",
     "{field} in class {class} is a BUF and has no table: its implementation needs SQL_TABLE too."},
    {"missing-buf-column", level::ERROR, blame::NAME, other::NONE, "A BUF entry has no column",
     "{field} in class {class} is a BUF and has no column: its implementation needs SQL_COLUMN "
     "too."},
    {"missing-column", level::ERROR, blame::NAME, other::NONE, "An entry has no column",
     "{field} in class {class} has no column in table {table}: its implementation needs "
     "SQL_COLUMN."},
    {"column-without-table", level::ERROR, blame::NAME, other::NONE,
     "An entry's column has no table to stand in",
     "{field} in class {class} stands in no table: what is around it needs SQL_TABLE."},
    {"repeated-table", level::ERROR, blame::VALUE, other::RELATED, "A table is used twice",
     "Table {table} of {owner} is also that of {other_owner}{there}: each table may be named "
     "once."},
    {"repeated-column", level::ERROR, blame::VALUE, other::COLUMN,
     "A column is used twice in a table",
     "Column {column} stands twice in table {table}{there}: each column may be named once."},
};

}  // namespace lint

#endif
