// What the reader refuses: every mistake of a file, each where it is.
#include <gtest/gtest.h>

#include <algorithm>

#include "dparse/read/reader.h"
#include "lint/judge.h"
#include "tests/lint/findings.h"

struct syntax_case {
  const char* text;
  const char* found;
};

// A word that is read whole, and told with what fails first behind it.
static const std::string LONG_WORD =
    "STRING " + std::string(2047, 'x') + " { ID = 1; }\nSTRING B {\n  ID 2;\n}\n";

static const syntax_case CASES[] = {
    {"", ""},
    {"STRING A { ID = 1; DESCR = \"a\"; }\n", ""},
    // The mistake, not the token that shows it.
    {"STRING A {\n  ID = 1;\n  DESCR = \"a;\n}\n", "3:11 string-not-closed"},
    {"STRING A {\n  ID = 1\n  DESCR = \"a\"\n}\n",
     "2:9 semicolon-expected, 3:14 semicolon-expected-after-string"},
    {"STRING A {\n  ID 1;\n}\n", "2:5 equals-expected"},
    {LONG_WORD.c_str(), "1:8 word-too-long, 3:5 equals-expected"},
    {"STRING A\n  ID = 1;\n}\n", "1:9 field-brace-expected"},
    {"STRING A", "1:9 field-brace-expected"},
    {"STRING A # a", "1:9 field-brace-expected"},
    {"STRING A {\n  ID = 0;\n  ID = 16777216000;\n}\n", "2:8 id-not-read, 3:8 invalid-id"},
    // A missing brace is told where it is missing, and nothing that only follows from it.
    {"STRING A {\n  ID = 1;\n\nSTRING B {\n  ID = x;\n}\nINT C { ID = 3; }\n",
     "2:10 unknown-field-attribute, 5:8 id-not-read"},
    {"STRING A {\n  ID = 1;", "2:10 closing-brace-expected"},
    {"STORABLE CLASS /a {\n  STRING A {\n    ORDER = 1;\n", "3:15 closing-brace-expected"},
    {"STRING A { ID = 1; }\n}\n}\nSTRING A { ID = 2; }\n",
     "2:1 invalid-token, "
     "4:17 duplicate-field-ids"},
    {"\xEF\xBB\xBFSTRING A { ID = 1; }\nSTRING B { ID = 2 }\n",
     "1:1 invalid-token, 2:18 semicolon-expected"},
    // Members of classes and of entries, at any depth, each by itself.
    {"STORABLE CLASS /a {\n  SEQ_START = \"x\";\n  LENGTH = 1;\n  ARRAY A {\n    CREATE = Never;\n"
     "    STRING B { ORDER = 1; AUDITABLE = 7; }\n    BLOB C { }\n  }\n}\n",
     "2:15 invalid-seq-start, 3:3 unknown-class-member, 5:14 invalid-create-permission, "
     "6:39 invalid-zero-or-one, 7:5 unknown-entry-member"},
    {"STORABLE CLASS /a/b {\n  SEQ_START = \"1\";\n}\n", "2:3 seq-start-in-subclass"},
    {"STORABLE CLASS /a {\n  SEQ_START = \"x\"\n    \"1\" \"2\";\n}\n", "2:15 invalid-seq-start"},
    {"STORABLE CLASS /a IMPLEMENTATION TESSEL {\n  SQL_TABLE = "
     "\"a234567890b234567890c234567890d\";\n  STRING A { SQL_COLUMN = a; }\n}\n",
     "1:34 unknown-implementation, 2:15 table-name-too-long, 3:27 quoted-string-expected"},
    // In a head that is broken, what is meant by it counts.
    {"STORABLE CLASS /a LDAPV3 {\n  LOCATION = \"x\";\n}\n"
     "STORABLE CLASS /b IMPLEMENTATION LDAPV3 too {\n  LOCATION = \"x\";\n  SQL_TABLE = "
     "\"x\";\n}\n",
     "1:18 opening-brace-expected, 4:40 opening-brace-expected, 6:3 unknown-class-member"},
    {"STORABLE CLASS /a IMPLEMENTATION", "1:33 implementation-name-expected"},
    {"INT F {\n  STRING {\n    ORDER = 1;\n  }\n}\n",
     "2:3 unknown-field-attribute, 3:5 unknown-field-attribute"},
    {"STORABLE CLASS /a IMPLEMENTATION LDAPV3 {\n  LOCATION = \"x\";\n  STRING A { ATTRIBUTE = "
     "\"a\"; OBJECTCLASS = \"a\"; OBJECTCLASS = \"b\"; }\n  BUF B { }\n}\n",
     "3:64 several-objectclasses, 4:3 unknown-class-member"},
    // An entry holds none that follows its head without "{"; a field that begins a line is none.
    {"STORABLE CLASS /a {\n  ARRAY R\n  STRING A { }\n}\n", "2:10 opening-brace-expected"},
    {"STORABLE CLASS /a\nSTRING A { ID = 1; }\n", "1:18 opening-brace-expected"},
    // What is broken is defined all the same; what is sound in it is compared.
    {"STORABLE CLASS /a {\n  FOO = 1;\n}\nSTORABLE CLASS /a { }\nSTORABLE CLASS /a { BAR; }\n",
     "2:3 unknown-class-member, 4:16 duplicate-class, 5:16 duplicate-class, 5:21 "
     "unknown-class-member"},
};

static lint::result syntax_only(lint::result found) {
  std::erase_if(found.told, [](const lint::finding& each) { return each.reader_line == 0; });
  return found;
}

static std::string syntax_in(const std::vector<std::string>& texts) {
  const auto sources = sources_of(texts);
  return shown(sources, syntax_only(lint::lint(sources, {})));
}

TEST(syntax, tells_every_mistake_where_it_is) {
  for (const syntax_case& each : CASES) EXPECT_EQ(syntax_in({each.text}), each.found) << each.text;
}

TEST(syntax, goes_on_in_other_files) {
  EXPECT_EQ(syntax_in({"STRING A { ID = 1 }\n", "STRING B { }\nSTRING A { ID = 2; }\nINT C {\n"}),
            "1:18 semicolon-expected, b:2:17 duplicate-field-ids, b:3:8 closing-brace-expected");
}

TEST(syntax, tells_the_first_mistake_of_a_file_as_the_reader_does) {
  for (const syntax_case& each : CASES) {
    const auto sources = sources_of({each.text});
    const lint::verdict reader = lint::judge(each.text);
    const lint::result found = syntax_only(lint::lint(sources, {}));
    const uint64_t line = found.told.empty() ? 0 : found.told[0].reader_line;
    EXPECT_EQ(line, reader.line) << each.text;
    for (size_t i = 1; i < found.told.size(); ++i) {  // the reader tells the first alone
      const lint::span& place = found.told[i].where;
      const char* end = each.text + place.start + place.length;
      EXPECT_EQ(found.told[i].reader_line, 1 + std::count(each.text, end, '\n')) << each.text;
    }
  }
}

struct sentence_case {
  std::string text;
  const char* sentence;  // one of those that are told
};

static const sentence_case SENTENCES[] = {
    {"STRING A { ID = x1; }\n", "ID needs a number from 1 to 16777215, not 'x1'."},
    {"STRING A { DESCR \"a\"; }\n", "\"=\" is missing behind DESCR."},
    {"STRING A {\n  ID = 1;\n\nSTRING B { ID = 2; }\n",
     "\"}\" is missing behind ';': field A is not closed, before field B begins."},
    {"STORABLE CLASS /a {\n  ARRAY R {\n    STRING A { }\n",
     "\"}\" is missing behind '}': entry R is not closed."},
    {"STORABLE CLASS /a {\n  INT X {\n    ORDER = 1;\n  INT Y {\n  }\n}\nINT B { ID = 2; }\n",
     "\"}\" is missing behind ';': entry X is not closed."},
    {"STORABLE CLASS /a {\n  INT {\n    ORDER = 2;\n",
     "\"}\" is missing behind ';': the definition is not closed."},
    {"}\n", "'}' closes nothing: remove it, or the one that is too many before it."},
    {"STRING A {\xc2\xa0ID = 3; }\n",
     "'<U+00A0>ID' is no attribute of a field definition (field A): it has ID and DESCR. It holds "
     "an "
     "invisible character, U+00A0 (no-break space): remove that."},
    {"STRING A { ID = 1; }\nINT A { ID = 1; }\n",
     "A is INT here and STRING where it is defined first, a.def:1: keep one definition."},
    {"STORABLE CLASS /a { STRING A { MODIFY = x; } }\n",
     "MODIFY needs one of SYSTEM, WRITEABLE, WRITABLE, NOT_WRITEABLE, NOT_WRITABLE, not 'x'."},
    {"STORABLE CLASS /a IMPLEMENTATION TESSEL7 { }\nSTORABLE CLASS /a IMPLEMENTATION TESSEL7 { }\n",
     "The implementation of class /a is defined already, a.def:1: keep one of them."},
    {"STORABLE CLASS /a/b { SEQ_START = \"1\"; }\n",
     "Class /a/b is a subclass and may not have SEQ_START: only base classes may."},
    {"STRING A { ID =", "The file ends behind '=', inside field A: complete it."},
    {"STORABLE CLASS /a IMPLEMENTATION",
     "The file ends behind IMPLEMENTATION, inside the implementation of /a: complete it."},
    {"STORABLE CLASS\nINT B { ID = 2; }\n", "CLASS needs the name of a class behind it."},
    {"STORABLE CLASS /a { STRING ORDER = 1; }\n", "STRING needs the name of a field behind it."},
    {LONG_WORD,
     "The word 'xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx...' is too long: "
     "it may have at most 2046 bytes."},
    {"STRING A { DESCR = \"" + std::string(2048, 'x') + "\"; }\n",
     "The string \"xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx... is too long: at "
     "most 2047 bytes are read."},
};

TEST(syntax, says_what_stands_there_and_what_is_to_be_done) {
  for (const sentence_case& each : SENTENCES) {
    const lint::result found = syntax_only(lint::lint(sources_of({each.text}), {}));
    std::string all;
    for (const lint::finding& one : found.told) all += one.sentence + "\n";
    EXPECT_NE(all.find(std::string(each.sentence) + "\n"), all.npos) << all;
  }
}

TEST(syntax, counts_what_it_cannot_tell) {
  std::string text = "STRING A { ID = 1; ";
  for (size_t i = 0; i < lint::MOST_TOLD + 5; ++i) text += "X;";
  const auto sources = sources_of({text + "}\nSTRING B { ID = 2 }\n"});
  const lint::result found = lint::lint(sources, {});
  EXPECT_EQ(found.told.size(), lint::MOST_TOLD);
  EXPECT_EQ(found.untold[static_cast<size_t>(lint::level::ERROR)], 6u);
}
