// What people read: the thing, both sides, and the remedy.
#include <gtest/gtest.h>

#include "tests/lint/findings.h"

static const char HELD[] =
    "STRING A { ID = 20001; }\nINT B { ID = 20002; }\nARRAY R { ID = 20003; }\n"
    "BUF F { ID = 20005; }\nSTORABLE CLASS /a {\n  STRING A { }\n  ARRAY R { INT B { } }\n"
    "  BUF F { }\n}\nSTORABLE CLASS /a IMPLEMENTATION TESSEL7 {\n  SQL_TABLE = \"a_t\";\n"
    "  STRING A { SQL_COLUMN = \"a\"; }\n  ARRAY R {\n    SQL_TABLE = \"r_t\";\n"
    "    INT B { SQL_COLUMN = \"b\"; }\n  }\n  BUF F { SQL_TABLE = \"f_t\"; SQL_COLUMN = \"f\"; "
    "}\n}\n";

static const char KEPT[] =
    "STORABLE CLASS /a {\n  STRING A { LENGTH = 5; }\n  ARRAY R { INT B { } }\n  BUF F { }\n}\n"
    "STORABLE CLASS /a IMPLEMENTATION TESSEL7 {\n  SQL_TABLE = \"b_t\";\n  SQL_STORAGE = \"s\";\n"
    "  STRING A { SQL_COLUMN = \"x\"; }\n  ARRAY R {\n    SQL_TABLE = \"r_t\";\n"
    "    INT B { SQL_COLUMN = \"y\"; }\n  }\n  BUF F { SQL_TABLE = \"f_t\"; SQL_COLUMN = \"g\"; "
    "}\n}\n";

struct sentence_case {
  const char* text;
  const char* sentence;  // one of those that are told
};

static const sentence_case CASES[] = {
    {"STRING Q { ID = 4294987297; }\n",
     "ID 4294987297 of Q is that of A, in the dictionary: choose a number that is free."},
    {KEPT,
     "Class /a has table \"a_t\" in the dictionary and \"b_t\" here: a replace keeps the "
     "dictionary's. Write \"a_t\" here, or give the dictionary the new name with 'tav_dict "
     "move-storage'."},
    {KEPT,
     "Class /a has the storage clause none in the dictionary and \"s\" here: a replace keeps the "
     "dictionary's. Remove it here, or move the storage by hand."},
    {KEPT,
     "B in class /a has column \"b\" in the dictionary and \"y\" here: a replace keeps the "
     "dictionary's. Write \"b\" here, or give the dictionary the new name with 'tav_dict "
     "move-storage'."},
    {"STORABLE CLASS /a { STRING A { } }\n"
     "STORABLE CLASS /a IMPLEMENTATION TESSEL7 { SQL_TABLE = \"a_t\"; STRING A { } }\n",
     "A in class /a has column \"a\" in the dictionary and none here: a replace keeps the "
     "dictionary's. Write \"a\" here."},
    {KEPT,
     "F in class /a has table and column \"f_t\" and \"f\" in the dictionary and \"f_t\" and "
     "\"g\" here: a replace keeps the dictionary's. Write \"f_t\" and \"f\" here, or give the "
     "dictionary the new name with 'tav_dict move-storage'."},
    {KEPT,
     "A in class /a has LENGTH 5 here and none in the dictionary: longer values would not fit any "
     "more. Leave it out, or make sure that none is stored."},
    {"INT A { ID = 7; }\n",
     "A is INT here and STRING in the dictionary, where a field's type cannot change: keep STRING, "
     "or give the field another name and number. Its ID differs, too: 7 here and 20001 there."},
    // The second of two that are equal is to blame.
    {"STORABLE CLASS /m {\n  STRING A { }\n  STRING A { }\n}\n"
     "STORABLE CLASS /m IMPLEMENTATION TESSEL7 { SQL_TABLE = \"t\"; STRING A { SQL_COLUMN = "
     "\"a\"; } }\n",
     "A stands twice in the same entry of class /m, a.def:2, and only the first has storage: "
     "remove one."},
    {"STORABLE CLASS /m { STRING A { } }\n"
     "STORABLE CLASS /m IMPLEMENTATION TESSEL7 { SQL_TABLE = \"t\"; STRING A { SQL_COLUMN = \"\"; "
     "} }\n",
     "A in class /m has no column in table t: its implementation needs SQL_COLUMN."},
    {"STORABLE CLASS /m {\n  STRING A { }\n  INT A { }\n}\n",
     "A is INT in class /m and defined as STRING, in the dictionary: both must be the same."},
    {"STORABLE CLASS /a/s { STRING A { } }\n",
     "A stands in no table, because subclass /a/s has none of its own: put it into an ARRAY or "
     "SUBSTRUCT that has SQL_TABLE."},
    {"STORABLE CLASS /a/s { ARRAY X { } }\n",
     "X in class /a/s is not defined, so that nobody knows whether it needs a column: define it, "
     "or correct the name."},
    {"STORABLE CLASS /m { ARRAY R { } }\nSTORABLE CLASS /m IMPLEMENTATION TESSEL7 {\n"
     "  SQL_TABLE = \"t\";\n  ARRAY R { SQL_TABLE = \"t\"; }\n}\n",
     "Table t of R in class /m is also that of class /m, a.def:3: each table may be named once."},
    {"STORABLE CLASS /m { }\nSTORABLE CLASS /m IMPLEMENTATION TESSEL7 { SQL_TABLE = \"t\"; }\n"
     "STORABLE CLASS /n { }\nSTORABLE CLASS /n IMPLEMENTATION TESSEL7 { SQL_TABLE = \"t\"; }\n"
     "STORABLE CLASS /o { }\nSTORABLE CLASS /o IMPLEMENTATION TESSEL7 { SQL_TABLE = \"t\"; }\n",
     "Table t of class /n is also that of class /m, a.def:2: each table may be named once."},
    {"STORABLE CLASS /m { }\nSTORABLE CLASS /m IMPLEMENTATION TESSEL7 {\n"
     "  ARRAY R { SQL_TABLE = \"r\"; }\n  SQL_TABLE = \"t\";\n}\n"
     "STORABLE CLASS /n { }\nSTORABLE CLASS /n IMPLEMENTATION TESSEL7 { SQL_TABLE = \"t\"; }\n",
     "Table t of class /n is also that of class /m, a.def:4: each table may be named once."},
    {"STORABLE CLASS /m { STRING A { CREATE = System; MODIFY = System; } }\n",
     "A in class /m may not have CREATE = SYSTEM and MODIFY = SYSTEM: only TAV_FLD_POID, "
     "TAV_FLD_CREATED_T and the like may."},
};

TEST(sentences, say_both_sides_and_the_remedy) {
  for (const sentence_case& each : CASES) {
    held now(HELD);
    std::string all;
    for (const lint::finding& found : lint::lint(sources_of({each.text}), now.world()).told)
      all += found.sentence + "\n";
    EXPECT_NE(all.find(std::string(each.sentence) + "\n"), all.npos)
        << each.sentence << "\n--- told:\n"
        << all;
  }
}
