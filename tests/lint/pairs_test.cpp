// Two mistakes in one file: neither hides the other, and none follows from both.
#include <gtest/gtest.h>

#include "tests/lint/findings.h"

static const char FIELDS[] =
    "STRING A { ID = 20001; DESCR = \"a\"; }\nSTRING B { ID = 20002; DESCR = \"b\"; }\n"
    "SUBSTRUCT S { ID = 20003; DESCR = \"s\"; }\n";

static const std::pair<const char*, const char*> CASES[] = {
    // Syntax beside meaning, in one class.
    {"STORABLE CLASS /a { STRING A { AUDITABLE = 7; } INT B { } }\n"
     "STORABLE CLASS /a IMPLEMENTATION TESSEL7 { SQL_TABLE = \"a_t\"; STRING A { SQL_COLUMN = "
     "\"a\"; } INT B { SQL_COLUMN = \"b\"; } }\n",
     "b:1:44 invalid-zero-or-one, b:1:49 field-type-mismatch"},
    {"STORABLE CLASS /a { SUBSTRUCT S { } STRING X { } }\n"
     "STORABLE CLASS /a IMPLEMENTATION TESSEL7 { SQL_TABLE = \"a_t\"; SUBSTRUCT S { SQL_TABLE = "
     "\"s_t\"; } STRING X { SQL_COLUMN = \"x\"; } }\n",
     "b:1:21 substruct-in-base-class, b:1:44 missing-field-definition, b:1:44 field-not-defined"},
    // In a class and in its implementation.
    {"STORABLE CLASS /a { STRING A { FOO = 1; } }\n"
     "STORABLE CLASS /a IMPLEMENTATION TESSEL7 { SQL_TABLE = \"a_t\"; STRING A { SQL_COLUMN = a; } "
     "}\n",
     "b:1:32 unknown-entry-member, b:2:87 quoted-string-expected"},
    // The same field with a type that is none, and with another.
    {"STRNG X { ID = 20005; }\nSTRING X { ID = 20005; DESCR = \"x\"; }\n"
     "INT X { ID = 20005; DESCR = \"x\"; }\n",
     "b:1:1 invalid-token, b:3:5 duplicate-field-types"},
    // A brace that is missing, which the reader notices at what is wrong behind it.
    {"STORABLE CLASS /a {\n  STRING A {\n    ORDER = 1;\n  STRING B {\n    FOO = 2;\n  }\n}\n"
     "STORABLE CLASS /a IMPLEMENTATION TESSEL7 { SQL_TABLE = \"a_t\"; STRING A { SQL_COLUMN = "
     "\"a\"; } STRING B { SQL_COLUMN = \"b\"; } }\n",
     "b:3:15 unknown-entry-member, b:5:5 unknown-entry-member"},
    {"STORABLE CLASS /a {{\n  STRING A { AUDITABLE = 7; }\n}\n"
     "STORABLE CLASS /a IMPLEMENTATION TESSEL7 { SQL_TABLE = \"a_t\"; STRING A { SQL_COLUMN = "
     "\"a\"; } }\n",
     "b:1:20 unknown-class-member, b:2:26 invalid-zero-or-one"},
    // A word that is missing in a head, and a value.
    {"STORABLE CLASS /a { }\nSTORABLE CLASS /a TESSEL7 {\n  SQL_TABLE = a;\n}\n",
     "b:2:18 opening-brace-expected, b:3:15 quoted-string-expected"},
    {"INT X { ID = 20001 }\nINT Y { ID = 20002; DESCR = \"y\"; }\n",
     "b:1:19 semicolon-expected, b:2:14 field-number-in-use"},
    {"STORABLE CLASS a { }\nSTORABLE CLASS a IMPLEMENTATION TESSEL7 { SQL_TABLE = \"a\"; }\n"
     "STORABLE CLASS /b IMPLEMENTATION TESSEL7 { SQL_TABLE = \"b\"; }\n",
     "b:1:16 class-name-without-slash, b:3:16 missing-interface"},
    {"STORABLE CLASS /a { STRING A { } STRING B { } }\n"
     "STORABLE CLASS /a IMPLEMENTATION TESSEL7 { SQL_TABLE = \"t\"; STRING A { SQL_COLUMN = "
     "\"x\"; } STRING B { SQL_COLUMN = \"X\"; } }\n"
     "STORABLE CLASS /b { }\nSTORABLE CLASS /b IMPLEMENTATION TESSEL7 { SQL_TABLE = \"T\"; }\n",
     "b:2:116 repeated-column, b:4:56 repeated-table"},
    // A field whose definition is broken: whether it needs a table nobody knows.
    {"SUBSTRUC T { ID = 20006; }\nSTORABLE CLASS /a { }\nSTORABLE CLASS /a/b { SUBSTRUCT T { } }\n"
     "STORABLE CLASS /a IMPLEMENTATION TESSEL7 { SQL_TABLE = a; }\n"
     "STORABLE CLASS /a/b IMPLEMENTATION TESSEL7 { SUBSTRUCT T { SQL_TABLE = \"t\"; } }\n",
     "b:1:1 invalid-token, b:4:56 quoted-string-expected"},
};

TEST(pairs, are_both_found_where_they_are) {
  for (const auto& [text, found] : CASES) EXPECT_EQ(found_in({FIELDS, text}), found) << text;
}
