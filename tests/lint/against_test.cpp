// What only a dictionary can say: what would be lost, what stays, and what is refused.
#include <gtest/gtest.h>

#include "dict/lint/refusals.h"
#include "lint/held.h"
#include "tests/lint/findings.h"

static const char HELD[] =
    "STRING A { ID = 20001; DESCR = \"a\"; }\n"
    "INT B { ID = 20002; DESCR = \"b\"; }\n"
    "ARRAY R { ID = 20003; DESCR = \"r\"; }\n"
    "STORABLE CLASS /a {\n  STRING A { LENGTH = 60; }\n  INT B { }\n  ARRAY R {\n    INT B { }\n"
    "    STRING A { LENGTH = 10; }\n  }\n}\n"
    "STORABLE CLASS /a IMPLEMENTATION TESSEL7 {\n  SQL_TABLE = \"a_t\";\n  STRING A { SQL_COLUMN = "
    "\"a\"; }\n  INT B { SQL_COLUMN = \"b\"; }\n  ARRAY R {\n    SQL_TABLE = \"a_r_t\";\n    INT B "
    "{ SQL_COLUMN = \"b\"; }\n    STRING A { SQL_COLUMN = \"a\"; }\n  }\n}\n";

struct against_case {
  const char* text;
  const char* found;
};

static const against_case CASES[] = {
    {"INT A { ID = 20001; }\nINT B { ID = 20009; }\nINT C { ID = 20003; }\n",
     "1:1 field-type-conflict, 2:14 field-number-conflict, 3:14 field-number-in-use"},
    // The dictionary's definition counts.
    {"INT A { ID = 20001; }\nSTORABLE CLASS /b { STRING A { } }\n"
     "STORABLE CLASS /b IMPLEMENTATION TESSEL7 { SQL_TABLE = \"b_t\"; STRING A { SQL_COLUMN = "
     "\"a\"; } "
     "}\n",
     "1:1 field-type-conflict"},
    // Storage that the dictionary has stays; entries that it alone has would be dropped.
    {"STORABLE CLASS /a {\n  STRING A { LENGTH = 59; }\n  ARRAY R { STRING A { LENGTH = 10; } "
     "}\n}\n"
     "STORABLE CLASS /a IMPLEMENTATION TESSEL7 {\n  SQL_TABLE = \"b_t\";\n  STRING A { SQL_COLUMN "
     "= "
     "\"x\"; }\n  ARRAY R {\n    SQL_TABLE = \"b_r_t\";\n    STRING A { SQL_COLUMN = \"y\"; }\n  "
     "}\n"
     "}\n",
     "1:16 class-exists, 1:16 entry-dropped, 2:23 length-narrowed, 3:9 entry-dropped, "
     "6:15 class-table-kept, 7:27 column-kept, 9:17 table-kept, 10:29 column-kept"},
    // All that the data manager refuses, not only its first.
    {"STRING D { ID = 16777216; DESCR = \"d\"; }\nSTRING E { ID = 20008; DESCR = \"\xff\"; }\n"
     "STORABLE CLASS /0 {\n  DESCR = \"\xff\";\n  STRING A { DESCR = \"\xff\"; }\n}\n"
     "STORABLE CLASS /0 IMPLEMENTATION TESSEL7 {\n  SQL_TABLE = \"b_t\";\n"
     "  STRING A { SQL_COLUMN = \"\xff\"; }\n}\n"
     "STORABLE CLASS /0/c/ { }\n",
     "1:17 field-refused, 2:32 field-refused, 4:11 class-refused, 5:22 class-refused, "
     "9:27 class-refused, 11:16 missing-superclass, 11:16 class-refused"},
    // What was told already, or is broken, is not told again as a refusal.
    {"STORABLE CLASS /b {\n  STRING A { }\n  STRING X { }\n  INT B { DESCR = ; }\n}\n"
     "STORABLE CLASS /d { ARRAY R { INT A { } } }\n"
     "STORABLE CLASS /d IMPLEMENTATION TESSEL7 {\n  SQL_TABLE = \"a_t\";\n  ARRAY R { SQL_TABLE = "
     "\"d_t\"; INT A { SQL_COLUMN = \"a\"; } }\n}\n",
     "1:16 missing-class-table, 2:10 column-without-table, 3:10 missing-field-definition, "
     "3:10 field-not-defined, 4:19 quoted-string-expected, 6:31 field-type-mismatch, "
     "8:15 repeated-table"},
    {"STORABLE CLASS /d { ARRAY R { INT B { } } }\n"
     "STORABLE CLASS /d IMPLEMENTATION TESSEL7 {\n  SQL_TABLE = \"d_t\";\n"
     "  ARRAY R { SQL_TABLE = \"a_t\"; INT B { SQL_COLUMN = \"b\"; } }\n}\n",
     "4:25 repeated-table"},
};

TEST(against, tells_what_a_dictionary_loses_keeps_and_refuses) {
  for (const against_case& each : CASES) {
    held now(HELD);
    const auto refuse = [&](const lint::deployment& sent) {
      return dict::refusals_of(now.fields.get(), now.classes.get(), sent);
    };
    const auto sources = sources_of({each.text});
    EXPECT_EQ(shown(sources, lint::lint(sources, now.world({.refuse = refuse}))), each.found)
        << each.text;
  }
}

TEST(against, refuses_an_export_that_cannot_be_read) {
  dd_list fields{DD_FIELDS};
  dd_list classes{DD_CLASSES};
  std::string fault;
  EXPECT_FALSE(lint::read_held("STRING A { ID = 1 }\n", fields, classes, fault));
  EXPECT_EQ(fault, "line 1: ; Expected");
}

// The modes print the id all the same, so that it is among those found.
TEST(against, says_nothing_of_a_field_that_stays_as_it_is) {
  held now(HELD);
  const auto sources = sources_of(
      {"STRING A { ID = 20001; DESCR = \"a\"; }\nINT B { ID = 20002; DESCR = \"new\"; }\n"
       "ARRAY R { ID = 20003; }\n"});
  std::string levels;
  for (const lint::finding& each : lint::lint(sources, now.world()).told)
    if (each.rule == "field-description-replaced")
      levels += each.told == lint::level::OFF ? "-" : "+";
  EXPECT_EQ(levels, "-+-");
}

// HELD again, with something else in one place.
static const struct {
  const char* before;
  const char* after;
  bool is_told;
} CHANGES[] = {
    {"", "", false},
    // What stays whatever the files say is no change.
    {"STORABLE CLASS /a {", "STORABLE CLASS /A {", false},
    {"SQL_COLUMN = \"b\"", "SQL_COLUMN = \"c\"", false},
    {"LENGTH = 60;", "LENGTH = 60; ORDER = 0; AUDITABLE = 0;", false},
    {"LENGTH = 60;", "LENGTH = 61;", true},
    {"  INT B { }\n  ARRAY", "  ARRAY", true},
    {"    INT B { }\n    STRING A { LENGTH = 10; }\n",
     "    STRING A { LENGTH = 10; }\n    INT B { }\n", true},
    {"STORABLE CLASS /a {", "STORABLE CLASS /a { DESCR = \"new\";", true},
};

TEST(against, tells_of_classes_that_are_there_only_those_that_change) {
  for (const auto& each : CHANGES) {
    std::string text = HELD;
    text.replace(text.find(each.before), std::string(each.before).size(), each.after);
    held now(HELD);
    const lint::world world = now.world({.stays = dict::leaves_as_it_is});
    std::string levels;
    for (const lint::finding& one : lint::lint(sources_of({text}), world).told)
      if (one.rule == "class-exists") levels += one.told == lint::level::OFF ? "-" : "+";
    EXPECT_EQ(levels, each.is_told ? "+" : "-") << each.after;
  }
}
