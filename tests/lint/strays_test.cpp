// What only follows from one mistake.
#include <gtest/gtest.h>

#include "tests/lint/findings.h"

static const char FIELDS[] =
    "STRING A { ID = 20001; DESCR = \"a\"; }\nSTRING B { ID = 20002; DESCR = \"b\"; }\n"
    "STRING C { ID = 20003; DESCR = \"c\"; }\nSTRING D { ID = 20004; DESCR = \"d\"; }\n";

static const std::pair<const char*, const char*> CASES[] = {
    // A brace too many: the first entry that the reader refuses behind it, and the last brace.
    {"STORABLE CLASS /a {\n  STRING A { } }\n  STRING B { }\n  STRING C { ORDER = 1; }\n"
     "  STRING D { ORDER = 2; }\n}\n"
     "STORABLE CLASS /a IMPLEMENTATION TESSEL7 {\n  SQL_TABLE = \"a\";\n"
     "  STRING A { SQL_COLUMN = \"a\"; }\n  STRING B { SQL_COLUMN = \"b\"; }\n"
     "  STRING C { SQL_COLUMN = \"c\"; }\n  STRING D { SQL_COLUMN = \"d\"; }\n}\n",
     "b:4:14 unknown-field-attribute, b:6:1 invalid-token"},
    {"STORABLE CLASS /a { STRING A { } STRING B { } STRING C { } STRING D { } }\n"
     "STORABLE CLASS /a IMPLEMENTATION TESSEL7 {\n  SQL_TABLE = \"a\";\n"
     "  STRING A { SQL_COLUMN = \"a\"; } }\n  STRING B { SQL_COLUMN = \"b\"; }\n"
     "  STRING C { SQL_COLUMN = \"c\"; }\n  STRING D { SQL_COLUMN = \"d\"; }\n}\n",
     "b:5:14 unknown-field-attribute, b:8:1 invalid-token"},
    // Fields that have a number are no entries.
    {"STORABLE CLASS /a/b { }\nSTRING X { ID = ; }\nSTRING Y { ID = 1; DESCR = ; }\n}\n"
     "STORABLE CLASS /a { }\nSTORABLE CLASS /a IMPLEMENTATION TESSEL7 { SQL_TABLE = \"a\"; }\n",
     "b:2:17 id-expected, b:3:28 quoted-string-expected, b:4:1 invalid-token"},
    // A class that the import refuses: its field is defined.
    {"STORABLE CLASS a { STRING A { } }\n"
     "STORABLE CLASS a IMPLEMENTATION TESSEL7 { SQL_TABLE = \"a\"; STRING A { SQL_COLUMN = \"a\"; "
     "} }\n",
     "b:1:16 class-name-without-slash"},
};

TEST(strays, are_told_once) {
  for (const auto& [text, found] : CASES) EXPECT_EQ(found_in({FIELDS, text}), found) << text;
}
