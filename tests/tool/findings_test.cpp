// Each finding alone: what the run prints, and what it raises. An error and a conflict both end
// `verify` with 1, but say so in different words; a finding that raises nothing ends it with 0.
#include <gtest/gtest.h>

#include "tests/tool/workshop.h"

static constexpr char ERROR[] = "\nErrors Detected...nothing committed\n";
static constexpr char CONFLICT[] = "Conflicts detected\n";
static constexpr char NOTHING[] = "No Conflicts detected\n";

static constexpr char KNOWN[] =
    "STRING F_S { ID = 20001; } INT F_I { ID = 20002; } ARRAY F_A { ID = 20003; }"
    "ARRAY F_A2 { ID = 20004; } SUBSTRUCT F_U { ID = 20005; } BUF F_B { ID = 20006; }"
    "BUF F_B2 { ID = 20007; }"
    "STORABLE CLASS /k { ARRAY F_A { STRING F_S { } } STRING F_S { } BUF F_B { } }"
    "STORABLE CLASS /k IMPLEMENTATION TESSEL7 { SQL_TABLE = \"k\";"
    "  ARRAY F_A { SQL_TABLE = \"ka\"; STRING F_S { SQL_COLUMN = \"s\"; } }"
    "  STRING F_S { SQL_COLUMN = \"s\"; }"
    "  BUF F_B { SQL_TABLE = \"kb\"; SQL_COLUMN = \"b\"; } }";

// A class of the entries, and how they are stored.
static std::string class_of(const std::string& name, const std::string& entries,
                            const std::string& stored) {
  return "STORABLE CLASS " + name + " { " + entries + " } STORABLE CLASS " + name +
         " IMPLEMENTATION TESSEL7 { " + stored + " }";
}

static std::string base(const std::string& entries, const std::string& stored) {
  return class_of("/n", entries, "SQL_TABLE = \"n\"; " + stored);
}

static std::string again(const std::string& table, const std::string& list,
                         const std::string& column, const std::string& buf) {
  return class_of("/k", "ARRAY F_A { STRING F_S { } } STRING F_S { } BUF F_B { }",
                  "SQL_TABLE = \"" + table + "\"; ARRAY F_A { SQL_TABLE = \"" + list +
                      "\"; STRING F_S { SQL_COLUMN = \"s\"; } } STRING F_S { SQL_COLUMN = \"" +
                      column + "\"; } BUF F_B { SQL_TABLE = \"" + buf +
                      "\"; SQL_COLUMN = \"b\"; }");
}

// The storage of a new class is judged among all classes, and again among the new ones.
static std::string twice(const std::string& line) {
  return line + line;
}

TEST(findings, raise_what_they_raise_alone) {
  const std::string exists = "Warning: Class Name /k already exists.\n";
  const std::string kept = "Warning: Not allowed to change ";
  const std::string column = "{ SQL_COLUMN = \"c\"; }";
  const std::string table = "{ SQL_TABLE = \"u\"; ";
  const struct {
    std::string input, err;
    const char* out;
  } rows[] = {
      {"STRING F_S { ID = 20001; }", "Warning: Duplicate field definition F_S, keeping old\n",
       NOTHING},
      {"INT F_S { ID = 20001; }", "Error: Conflicting field definition F_S, different type\n",
       ERROR},
      {"STRING F_S { ID = 20999; }", "Error: Conflicting field definition F_S, different id\n",
       ERROR},
      {"INT F_N { ID = 20001; }",
       "Error: Conflicting field definition F_N, id in use by different field\n", ERROR},
      // known classes
      {again("k", "ka", "s", "kb"), exists, CONFLICT},
      {again("x", "ka", "s", "kb"), exists + kept + "SQL_TABLE for class: /k, keeping old\n",
       CONFLICT},
      {again("k", "x", "s", "kb"),
       exists + kept + "SQL_TABLE for class: /k field: F_A, keeping old\n", CONFLICT},
      {again("k", "ka", "x", "kb"),
       exists + kept + "SQL_COLUMN for class: /k field: F_S, keeping old\n", CONFLICT},
      {again("k", "ka", "s", "x"),
       exists + kept + "SQL_TABLE or SQL_COLUMN for class: /k field: F_B, keeping old\n", CONFLICT},
      // names and implementations
      {class_of("n", "", "SQL_TABLE = \"n\";"),
       "Error: storable class names must begin with '/': n\n", ERROR},
      {class_of("/x/y", "", ""), "Error: Missing parent superclass /x\n", ERROR},
      {base("", "") + "STORABLE CLASS /m IMPLEMENTATION TESSEL7 { }",
       "Error: Storable class implementation /m specified without interface\n", ERROR},
      {base("STRING F_S { }", "INT F_S " + column),
       "Error: field type mismatch between interface/implementation of class /n, field F_S\n",
       ERROR},
      {base("", "STRING F_S " + column),
       "Error: Missing field interface for F_S when implementation was provided\n", ERROR},
      // structure
      {base("STRING F_N { }", "STRING F_N " + column),
       "Error: Storable class /n, Missing field definition F_N\n" +
           twice("Error: Field F_N not defined\n"),
       ERROR},
      {base("INT F_S { }", "INT F_S " + column),
       "Error: Storable class /n, field F_S type mismatch\n", ERROR},
      {base("SUBSTRUCT F_U { }", "SUBSTRUCT F_U " + table + "}"),
       "Error: Storable class /n, substruct F_U not allowed in base class\n", ERROR},
      {base("STRING F_S { CREATE = SYSTEM; }", "STRING F_S " + column),
       "Error: Storable class /n, field F_S with SYSTEM permission may not be specified\n", ERROR},
      {class_of("/k/n", "ARRAY F_A2 { MODIFY = SYSTEM; }", "ARRAY F_A2 " + table + "}"),
       "Error: Storable class /k/n, field F_A2 with SYSTEM permission may not be specified\n",
       ERROR},
      {base("STRING F_S { INT F_I { } }", "STRING F_S " + column),
       "Error: Storable class /n, Illegally nested field F_I\n", ERROR},
      {base("ARRAY F_A2 { SUBSTRUCT F_U { } }",
            "ARRAY F_A2 " + table + "SUBSTRUCT F_U { SQL_TABLE = \"v\"; } }"),
       "Error: Storable class /n, Illegally nested substruct F_U\n", ERROR},
      {base("ARRAY F_A2 { STRING F_S { } STRING F_S { } }",
            "ARRAY F_A2 " + table + "STRING F_S " + column + " }"),
       twice("Error: Storable class /n, Multiple use of field F_S\n") +
           twice("Error: missing column name for field F_S in table: u\n"),
       ERROR},
      {class_of("/k/n", "ARRAY F_A { }", "ARRAY F_A " + table + "}"),
       "Error: Array or Substruct conflict in class hierarchy /k, /k/n, F_A\n", ERROR},
      // storage
      {class_of("/n", "ARRAY F_A2 { }", "ARRAY F_A2 " + table + "}"),
       twice("Error:  Missing table name for /n\n"), ERROR},
      {base("BUF F_B { }", "BUF F_B { }"),
       twice("Error: missing table name and column name for BUF: F_B\n"), ERROR},
      {base("BUF F_B { }", "BUF F_B " + column),
       twice("Error: missing table name for BUF field F_B\n"), ERROR},
      {base("BUF F_B { }", "BUF F_B " + table + "}"),
       twice("Error: missing column name for BUF field F_B in table: u\n"), ERROR},
      {base("ARRAY F_A2 { }", ""), twice("Error: missing tablename for array/substruct: F_A2\n"),
       ERROR},
      {base("STRING F_S { }", ""), twice("Error: missing column name for field F_S in table: n\n"),
       ERROR},
      {base("STRING F_S { } INT F_I { }", "STRING F_S " + column + " INT F_I " + column),
       "Error: duplicate column c within table: n\n", ERROR},
      {class_of("/n", "", "SQL_TABLE = \"k\";"), "Error: duplicate table name: k\n", ERROR},
  };
  const workshop place;
  place.write("known.def", KNOWN);
  ASSERT_EQ(place.run({"create", "known.def"}).err, "");
  for (const auto& row : rows) {
    place.write("a.def", row.input);
    const run_result result = place.run({"verify", "a.def"});
    EXPECT_EQ(result.err, row.err) << row.input;
    EXPECT_EQ(result.out, row.out) << row.input;
    EXPECT_EQ(result.exit_status, row.out == NOTHING ? 0 : 1) << row.input;
  }
}
