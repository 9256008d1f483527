// What the import's checks find, each where it is.
#include <gtest/gtest.h>

#include "tests/lint/findings.h"

static const char FIELDS[] =
    "STRING A { ID = 20001; }\n"
    "INT B { ID = 20002; }\n"
    "ARRAY R { ID = 20003; }\n"
    "SUBSTRUCT S { ID = 20004; }\n"
    "BUF F { ID = 20005; }\n";

struct import_case {
  const char* text;  // behind the fields, in a file of its own
  const char* found;
};

static const import_case CASES[] = {
    {"", ""},
    {"STRING C { ID = 20001; }\nSTRING TAV_FLD_NAME { ID = 77; }\nINT TAV_FLD_DESCR { ID = 16; }\n",
     "b:1:17 field-number-in-use, b:2:28 field-number-conflict, b:3:1 field-type-conflict"},
    // A use of a field whose definition is refused is told once, and so is what storage lacks.
    {"STRING C { ID = 20001; }\nSTORABLE CLASS /a {\n  STRING A { }\n  ARRAY R {\n    STRING C { "
     "}\n"
     "    STRING D { }\n  }\n  STRING C { }\n  STRING D { }\n}\n"
     "STORABLE CLASS /a IMPLEMENTATION TESSEL7 {\n  SQL_TABLE = \"t\";\n  STRING A { SQL_COLUMN = "
     "\"a\"; }\n  STRING C { SQL_COLUMN = \"c\"; }\n  STRING D { SQL_COLUMN = \"d\"; }\n"
     "  ARRAY R {\n    SQL_TABLE = \"u\";\n    STRING C { SQL_COLUMN = \"c\"; }\n"
     "    STRING D { SQL_COLUMN = \"d\"; }\n  }\n}\n",
     "b:1:17 field-number-in-use, b:5:12 missing-field-definition, b:5:12 field-not-defined, "
     "b:6:12 missing-field-definition, b:6:12 field-not-defined, b:9:10 missing-field-definition"},
    // Fatal to a run of the modes, which tells nothing of what follows.
    {"STORABLE CLASS /a {\n  STRING A { CREATE = System; }\n  STRING B { }\n}\n"
     "STORABLE CLASS /x/y { ARRAY R { } }\nSTORABLE CLASS /b {\n  STRING A { }\n}\n"
     "STORABLE CLASS /b IMPLEMENTATION TESSEL7 {\n  SQL_TABLE = \"t\";\n  INT A { }\n}\n",
     "b:1:16 missing-class-table, b:2:10 column-without-table, b:2:23 system-field-in-base-class, "
     "b:3:3 field-type-mismatch, b:5:16 missing-superclass, b:5:29 missing-table, "
     "b:11:3 implementation-type-mismatch, b:11:7 missing-column"},
    {"STORABLE CLASS /a {\n  ARRAY R {\n    STRING A { }\n    STRING A { }\n    ARRAY R {\n      "
     "ARRAY R { }\n      SUBSTRUCT S { }\n    }\n  }\n  SUBSTRUCT S { }\n  BUF F { }\n}\n"
     "STORABLE CLASS /a IMPLEMENTATION TESSEL7 {\n  SQL_TABLE = \"t\";\n  ARRAY R {\n    SQL_TABLE "
     "= "
     "\"T\";\n    STRING A { SQL_COLUMN = \"a\"; }\n    ARRAY R {\n      SQL_TABLE = \"u\";\n      "
     "ARRAY R { SQL_TABLE = \"v\"; }\n      SUBSTRUCT S { SQL_TABLE = \"w\"; }\n    }\n  }\n"
     "  SUBSTRUCT S { SQL_TABLE = \"x\"; }\n  BUF F { SQL_TABLE = \"y\"; }\n  INT G { }\n}\n",
     "b:4:12 repeated-field, b:4:12 missing-column, b:6:13 illegal-nesting, b:7:7 "
     "nested-substruct, "
     "b:10:3 substruct-in-base-class, b:16:17 repeated-table, b:25:7 missing-buf-column, "
     "b:26:7 missing-field-interface"},
    {"STORABLE CLASS /a/b {\n  ARRAY R { STRING A { } }\n  INT B { CREATE = System; }\n}\n"
     "STORABLE CLASS /a { ARRAY R { STRING A { } } }\nSTORABLE CLASS c { }\n"
     "STORABLE CLASS /d IMPLEMENTATION TESSEL7 { }\n"
     "STORABLE CLASS /a IMPLEMENTATION TESSEL7 {\n  SQL_TABLE = \"t\";\n  ARRAY R {\n    SQL_TABLE "
     "= \"u\";\n    STRING A { SQL_COLUMN = \"a\"; }\n  }\n}\n"
     "STORABLE CLASS /a/b IMPLEMENTATION TESSEL7 {\n  ARRAY R {\n    SQL_TABLE = \"v\";\n    "
     "STRING A { SQL_COLUMN = \"a\"; }\n  }\n}\n",
     "b:3:7 field-outside-array, b:3:7 column-without-table, b:3:20 system-field-in-subclass, "
     "b:5:27 array-in-related-class, b:6:16 class-name-without-slash, b:6:16 missing-class-table, "
     "b:7:16 missing-interface"},
    // Each but the first of equal names, once, however they are spelled.
    {"STORABLE CLASS /a/b {\n  ARRAY R {\n    STRING A { }\n    STRING a { }\n    STRING A { }\n"
     "    STRING A { }\n  }\n}\nSTORABLE CLASS /a { }\n"
     "STORABLE CLASS /a IMPLEMENTATION TESSEL7 { SQL_TABLE = \"t\"; }\n"
     "STORABLE CLASS /a/b IMPLEMENTATION TESSEL7 {\n  ARRAY R { SQL_TABLE = \"u\"; STRING A { "
     "SQL_COLUMN = \"a\"; } }\n}\n",
     "b:4:12 repeated-field, b:4:12 missing-column, b:5:12 repeated-field, b:6:12 repeated-field"},
    // What two entries of one name lack is told of both.
    {"STORABLE CLASS /a {\n  ARRAY R { ARRAY T { STRING A { } } }\n  ARRAY U { ARRAY T { STRING A "
     "{ } } "
     "}\n}\n"
     "STORABLE CLASS /a IMPLEMENTATION TESSEL7 {\n  SQL_TABLE = \"t\";\n"
     "  ARRAY R { SQL_TABLE = \"r\"; ARRAY T { SQL_TABLE = \"rt\"; } }\n"
     "  ARRAY U { SQL_TABLE = \"u\"; ARRAY T { SQL_TABLE = \"ut\"; } }\n}\n"
     "ARRAY T { ID = 20006; }\nARRAY U { ID = 20007; }\n",
     "b:2:30 missing-column, b:3:30 missing-column"},
};

TEST(import, tells_every_finding_where_it_is) {
  for (const import_case& each : CASES)
    EXPECT_EQ(found_in({FIELDS, each.text}), each.found) << each.text;
}

// The import does not look for the definitions of such a class's fields: what it tells of them
// because of that is told as other names of the one finding.
TEST(import, goes_by_other_names_behind_a_class_name_without_slash) {
  static constexpr const char* TEXT =
      "STORABLE CLASS x/a { ARRAY R { STRING A { } } BUF F { } }\n"
      "STORABLE CLASS b { STRING A { } SUBSTRUCT S { } }\n"
      "STORABLE CLASS b IMPLEMENTATION TESSEL7 { SQL_TABLE = \"t\"; STRING A { SQL_COLUMN = \"a\"; "
      "} "
      "}\n";
  const auto sources = sources_of({FIELDS, TEXT});
  const lint::result found = lint::lint(sources, {});
  EXPECT_EQ(shown(sources, found),
            "b:1:16 class-name-without-slash, b:2:16 class-name-without-slash");
  std::string names;
  for (const lint::finding& each : found.told)
    for (const lint::alias& other : each.aliases)
      names.append(other.rule).append(" of ").append(other.subject).append("\n");
  EXPECT_EQ(names,
            "field-not-defined of class x/a, entry R\ncolumn-without-table of class x/a, entry R\n"
            "field-not-defined of class b, entry A\n"
            "missing-column of class b, entry S, attribute SQL_COLUMN\n");
}

TEST(import, tells_nothing_that_only_follows_from_what_is_broken) {
  static constexpr const char* BROKEN[] = {
      "STRING X { ID = ; }\nSTRING Y { ID 7; }\n",
      "STRING X  ID = 5; }\nUINT Y { ID = 6; }\n",
      "STORABLE CLASS /x { FOO; STRING X { } }\n"
      "STORABLE CLASS /x IMPLEMENTATION TESSEL7 { SQL_TABLE = \"x\"; STRING X { SQL_COLUMN = "
      "\"x\"; } }\n",
      "STORABLE CLASS /y { ARRAY R { STRING A { } INT B { } } }\n"
      "STORABLE CLASS /y IMPLEMENTATION TESSEL7 { SQL_TABLE = \"y\"; ARRAY R no { SQL_TABLE = "
      "\"r\"; "
      "STRING A { SQL_COLUMN = \"a\"; } } }\n",
  };
  static const char USE[] =
      "STORABLE CLASS /a {\n  STRING X { }\n  STRING Y { }\n  ARRAY R { STRING A { } }\n}\n"
      "STORABLE CLASS /a IMPLEMENTATION TESSEL7 {\n  SQL_TABLE \"t\";\n  STRING X { SQL_COLUMN = "
      "x; }\n"
      "  STRING Y { SQL_COLUMN = \"y\"; }\n  ARRAY R { SQL_TABLE = ; STRING A { SQL_COLUMN = "
      "\"a\"; } "
      "}\n}\n";
  const auto sources = sources_of({FIELDS, BROKEN[0], BROKEN[1], BROKEN[2], BROKEN[3], USE});
  for (const lint::finding& found : lint::lint(sources, {}).told)
    EXPECT_NE(found.reader_line, 0u) << found.rule << ": " << found.sentence;
}

// Far inside, where no place is told apart by the names around it, what has the same name is told
// once: the findings of a path as long as the file would take time of its square.
TEST(import, tells_what_is_nested_far_in_once_for_each_name) {
  static constexpr size_t LEVELS = 1000;
  std::string text = "STORABLE CLASS /a {\n";
  for (size_t i = 0; i < LEVELS; ++i) text += "ARRAY A { STRING B { } ";
  text.append(LEVELS, '}').append("}\n");
  EXPECT_LT(lint::lint(sources_of({text}), {}).told.size(), LEVELS / 2);
}

// A second run finds the same, and nothing of the first.
TEST(import, starts_anew_in_every_run) {
  const std::string first = found_in({FIELDS, CASES[4].text});
  EXPECT_EQ(found_in({FIELDS}), "");
  EXPECT_EQ(found_in({FIELDS, CASES[4].text}), first);
}
