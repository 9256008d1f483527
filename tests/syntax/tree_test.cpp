#include "syntax/tree.h"

#include <gtest/gtest.h>

#include "dparse/read/reader.h"
#include "syntax/scan.h"
#include "tests/dparse/language.h"
#include "texts.h"

static std::string shape(const std::string& text) {
  return shape_of(syntax::read(text));
}

TEST(Tree, HasTheShapeOfTheText) {
  const std::pair<std::string, std::string> cases[] = {
      {"", ""},
      {" # only this", ""},
      {"STRING A { ID = 5; DESCR = \"a\" \"b\"; } int B{}", "F:A[a:ID a:DESCR] F:B"},
      {"STORABLE CLASS /a { LABEL = \"x\"; ARRAY X { ORDER = 1; INT Y { } } }",
       "C:/a[a:LABEL E:X[a:ORDER E:Y]]"},
      {"STORABLE CLASS /a IMPLEMENTATION TESSEL7 { POID X { SQL_COLUMN = \"x\"; } }",
       "I:/a[E:X[a:SQL_COLUMN]]"},
      {"\xEF\xBB\xBFSTRING A { }", "F:A"},
      // Broken members: what stands around them is read as usual.
      {"STRING A { ID 5; DESCR = \"x\"; }", "F:A[!a:ID a:DESCR]"},
      {"STRING A { ID = ; DESCR = \"x\"; }", "F:A[!a:ID a:DESCR]"},
      {"STRING A { ID = 5 DESCR = \"x\"; }", "F:A[!a:ID a:DESCR]"},
      {"STRING A { ID = 5 }", "F:A[!a:ID]"},
      {"STRING A { DESCR = \"open;\nID = 5; }", "F:A[!a:DESCR a:ID]"},
      {"STRING A { ;; ID = = 5; = 6; }", "F:A[!? !a:ID !?]"},
      {"STORABLE CLASS /a { STRIN X { ORDER = 1; } STRING Y { } }", "C:/a[!a:STRIN E:Y]"},
      {"STORABLE CLASS /a { STRING { ORDER = 1; } STRING Y { } }", "C:/a[!E[a:ORDER] E:Y]"},
      {"STORABLE CLASS /a { STRING X ORDER = 1; } STRING Y { } }", "C:/a[!E:X[a:ORDER] E:Y]"},
      {"STORABLE CLASS /a { STRING X }", "C:/a[!E:X]"},
      // Broken definitions.
      {"STRING A ID = 5; } INT B { }", "!F:A[a:ID] F:B"},
      {"STRING A } INT B { }", "!F:A F:B"},
      {"STRING A { ID = 5; INT B { }", "!F:A[a:ID] F:B"},
      {"STRING LABEL { ID = 5; } INT B { }", "!F[a:ID] F:B"},
      {"STORABLE CLASS /a { POID X { ORDER = 1; STORABLE CLASS /b { }",
       "!C:/a[!E:X[a:ORDER]] C:/b"},
      {"STORABLE CLASS /a { POID X { }\nSTRING A {\n\tID = 1; }", "!C:/a[E:X] F:A[a:ID]"},
      {"STORABLE CLASS /a POID X { } }", "!C:/a[E:X]"},
      {"STORABLE CLASS { } STORABLE CLASS /a IMPLEMENTATION { }", "!C !I:/a"},
      {"STORABLE /a { POID X { } } INT B { }", "!C[E:X] F:B"},
      {"STORABL CLASS /a { POID X { } } INT B { }", "!? F:B"},
      {"} ; } INT B { } ;", "!? F:B !?"},
      {"STRING A {{ ID = 5; } INT B { }", "F:A[!? a:ID] F:B"},
      {"STORABLE CLASS /a TESSEL7 { SQL_TABLE = \"a\"; }", "!I:/a[a:SQL_TABLE]"},
      // Where a brace is missing shows in how lines are indented, if they are.
      {"STORABLE CLASS /a {\n\tINT X {\n\t\tORDER = 1;\n\tINT Y {\n\t}\n}\nINT B { }",
       "C:/a[!E:X[a:ORDER] E:Y] F:B"},
      {"STORABLE CLASS /a {\n\tINT X {\n\t\tORDER = 1;\n}\nINT B { }\nINT C { }",
       "C:/a[!E:X[a:ORDER]] F:B F:C"},
      {"STORABLE CLASS /a {\n\tINT X {\n\t}\nINT B {\n}\nINT C { }", "!C:/a[E:X] F:B F:C"},
      {"STORABLE CLASS /a {\nINT X {\nORDER = 1;\nINT Y {\n}\n}\n", "!C:/a[E:X[a:ORDER E:Y]]"},
      {"STORABLE CLASS /a {\n\tARRAY X {\n\t\tINT Y {\n\t\t\tORDER = 1;\n\t\tLENGTH = 2;\n\t}\n}\n",
       "C:/a[E:X[!E:Y[a:ORDER] a:LENGTH]]"},
      {"UINT A { } OBJ B { }", "F:A F:B"},
      {"INT", "!?"},
      {std::string("\0 INT A { }", 11), "!? F:A"},
  };
  for (const auto& [text, expected] : cases) EXPECT_EQ(shape(text), expected) << text;
}

static std::string tokens_of_reader(std::string_view text, size_t count) {
  const std::string copy(text);
  const file stream = stream_of(copy);
  std::string all;
  for (char token[dparse::TEXT_SIZE]; count > 0 && !copy.empty(); --count) {
    const int number = dparseGetToken(stream.get(), token, sizeof token);
    if (number == DPARSE_TOKEN_EOF) break;
    all += std::to_string(number) + ":" + token + "\n";
  }
  return all;
}

static bool is_too_long(int kind, size_t size) {
  const size_t quotes = kind == DPARSE_TOKEN_STRING ? 2 : 0;
  return size - quotes >= dparse::TEXT_SIZE;
}

// The reader cuts what it takes for too long in pieces: it goes on behind that.
static void expect_tokens_of_reader(const std::string& text) {
  const syntax::tree tree = syntax::read(text);
  size_t from = syntax::mark_size(text), count = 0;
  std::string all;
  const auto compare = [&](size_t most) {
    EXPECT_EQ(all, tokens_of_reader(std::string_view(text).substr(from), most)) << text;
  };
  for (const auto& each : tree.definitions) {
    for (const auto& token : tokens_of(each)) {
      std::string_view shown = text_of(tree.text, each, token);
      if (is_too_long(token.kind(), shown.size())) {
        compare(count);
        from = place_of(each, token) + shown.size(), count = 0, all.clear();
        continue;
      }
      if (shown.starts_with('"') && token.kind() != DPARSE_TOKEN_WORD) {
        shown = shown.substr(1, shown.find_first_of(std::string_view("\"\0", 2), 1) - 1);
      } else if (token.kind() == DPARSE_TOKEN_EMPTY) {
        shown = "";
      }
      all += std::to_string(token.kind()) + ":" + std::string(shown) + "\n", ++count;
    }
  }
  compare(text.size() + 1);
}

TEST(Tree, HasTheTokensOfTheReaderAndEveryByte) {
  std::mt19937 chance(1);
  for (const std::string& text : all_texts()) {
    std::string mutated = text;
    for (int i = 0; i < 6; ++i) {
      expect_tokens_of_reader(mutated);
      const std::string records = dump(syntax::read(mutated));
      EXPECT_EQ(records.find('('), records.npos) << records << mutated;
      mutated = changed(mutated, mutate(chance, mutated));
    }
    if (testing::Test::HasFailure()) break;
  }
  take_log();
}

TEST(Tree, AfterAnEditIsThatOfTheNewText) {
  std::mt19937 chance(2);
  for (const std::string& text : all_texts()) {
    syntax::tree tree = syntax::read(text);
    for (int i = 0; i < 10; ++i) {
      const mutation change = mutate(chance, tree.text);
      const std::string before = tree.text;
      apply(tree, {change.start, change.removed, change.inserted});
      ASSERT_EQ(dump(tree), dump(syntax::read(changed(before, change))))
          << before << "\n--- at " << change.start << " -" << change.removed << " "
          << change.inserted;
    }
  }
}

TEST(Tree, ReadsAgainWhatAnEditTouches) {
  const std::string text = "INT A { ID = 1; }\n# b\nINT B { ID = 2; }\nINT C { ID = 3; }\nINT D ;";
  const struct {
    const char* at;
    size_t removed;
    const char* inserted;
    size_t reread;
    const char* shape;
  } cases[] = {{"2; }", 1, "22", 1, "F:A[a:ID] F:B[a:ID] F:C[a:ID] !F:D"},
               {"# b", 3, "", 1, "F:A[a:ID] F:B[a:ID] F:C[a:ID] !F:D"},
               {"}\n# b", 1, "", 2, "!F:A[a:ID] F:B[a:ID] F:C[a:ID] !F:D"},
               {"# b", 0, "INT E { }", 2, "F:A[a:ID] F:E F:B[a:ID] F:C[a:ID] !F:D"},
               {"INT B", 18, "", 1, "F:A[a:ID] F:C[a:ID] !F:D"},
               {" ;", 2, " { }", 1, "F:A[a:ID] F:B[a:ID] F:C[a:ID] F:D"},
               {"INT A", 0, "# ", 1, "F:B[a:ID] F:C[a:ID] !F:D"}};
  for (const auto& each : cases) {
    syntax::tree tree = syntax::read(text);
    const size_t reread = apply(tree, {text.find(each.at), each.removed, each.inserted});
    EXPECT_EQ(reread, each.reread) << each.at;
    EXPECT_EQ(shape_of(tree), each.shape);
  }
}

TEST(Tree, KnowsPlaces) {
  // A euro sign has 3 bytes, a clef 4 and two UTF-16 units; 0xff and half a euro are no characters.
  const syntax::tree tree = syntax::read("a\r\n\"\u20ac\U0001d11e\xff\xe2\x82\" b\n");
  const size_t b = tree.text.find(" b") + 1;
  const syntax::place place = place_at(tree, b);
  EXPECT_EQ(place.line, 2u);
  EXPECT_EQ(place.column, 13u);
  EXPECT_EQ(columns_at(tree.text, place).characters, 8u);
  EXPECT_EQ(columns_at(tree.text, place).utf16, 9u);
  EXPECT_EQ(place_at(tree, tree.text.size()).line, 3u);
  EXPECT_EQ(place_at(tree, 0).line, 1u);
  const syntax::tree long_one = syntax::read(std::string(10000, '\n') + "a");
  EXPECT_EQ(place_at(long_one, 10000).line, 10001u);
  EXPECT_EQ(place_at(long_one, 4096).line, 4097u);
}

TEST(Tree, HoldsTokensAndNestingOfAnySize) {
  const std::string word(17'000'000, 'w');
  const syntax::tree tree = syntax::read("INT " + word + " { DESCR = \"" + word + "\"; }");
  EXPECT_EQ(name_of(tree.text, tree.definitions[0], nodes_of(tree.definitions[0])[0]), word);
  EXPECT_EQ(text_of(tree.text, tree.definitions[0], nodes_of(tree.definitions[0])[0]), tree.text);
  std::string deep = "STORABLE CLASS /a {";
  for (int i = 0; i < 100'000; ++i) deep += "ARRAY A {";
  // The class, as many levels as the reader takes, and what is too deep as one.
  EXPECT_EQ(nodes_of(syntax::read(deep).definitions[0]).size(), 10'242u);
}

TEST(Tree, SharesTheStructureOfDefinitionsThatAreMadeAlike) {
  syntax::tree tree = syntax::read(
      "INT A { ID = 1; }\nINT B { ID = 2; }\nINT CD { ID = 3; }\n"
      "INT E { ID = 4 }\nINT F { ID = 5; }");
  const auto tokens = [&](size_t i) { return tokens_of(tree.definitions[i]).data(); };
  EXPECT_NE(tokens(0), tokens(1));  // a line end stands before one of them only
  EXPECT_EQ(tokens(1), tokens(4));
  EXPECT_NE(tokens(1), tokens(2));
  EXPECT_NE(tokens(1), tokens(3));
  apply(tree, {tree.text.find('B'), 1, "BCD"});
  EXPECT_EQ(dump(tree), dump(syntax::read(tree.text)));
  EXPECT_NE(tokens(1), tokens(4));
}
