#include "syntax/format.h"

#include <gtest/gtest.h>

#include "tests/dparse/language.h"
#include "texts.h"

TEST(Format, LaysOut) {
  const std::pair<std::string, std::string> cases[] = {
      {"", ""},
      {" \t ", ""},
      {"\n\n\n", "\n"},
      {"string A{ID=5;DESCR=\"x\";}int B { }",
       "string A {\n\tID = 5;\n\tDESCR = \"x\";\n}\nint B {\n}\n"},
      {"STORABLE\nCLASS /a\n{ ARRAY X { ORDER = 1 ; INT Y{} } }",
       "STORABLE CLASS /a {\n\tARRAY X {\n\t\tORDER = 1;\n\t\tINT Y {\n\t\t}\n\t}\n}\n"},
      {"STORABLE CLASS /a IMPLEMENTATION TESSEL7{SQL_TABLE=\"t\";}",
       "STORABLE CLASS /a IMPLEMENTATION TESSEL7 {\n\tSQL_TABLE = \"t\";\n}\n"},
      // Strings stay apart, and on lines of their own.
      {"INT A{DESCR=\"a\"\"b\"\n\n\"c\"\n;}", "INT A {\n\tDESCR = \"a\" \"b\"\n\n\t\t\"c\";\n}\n"},
      {"INT A{DESCR=\n\"a\";}", "INT A {\n\tDESCR =\n\t\t\"a\";\n}\n"},
      // Blank lines.
      {"\n\n\nINT A {\n\n\nID = 1;\n\n\n\n}\n\n\n\nINT B {\n}\n\n\n",
       "\nINT A {\n\n\tID = 1;\n\n}\n\nINT B {\n}\n\n"},
      {"INT A {\n}\n\n\n\n#==\n# A\n#==\n\n\n# x\n", "INT A {\n}\n\n\n#==\n# A\n#==\n\n# x\n"},
      // Comments: on their own line, at the end of one, inside, before ";", before "}", at the end.
      {"# a\nINT A{ # b\n # c\nID # d\n=#e\n5#f\n  #g\n;# h\n# i\n}#j\n   # k ",
       "# a\nINT A { # b\n\t# c\n\tID # d\n\t\t= #e\n\t\t5#f\n\t\t#g\n\t\t; # h\n\t# i\n} #j\n"
       "# k \n"},
      {"INT # a\n# b\nA # c\n{ }", "INT # a\n\t# b\n\tA # c\n\t{\n}\n"},
      {"INT A { DESCR = \"#\" # a\n\"b\" # c\n; }",
       "INT A {\n\tDESCR = \"#\" # a\n\t\t\"b\" # c\n\t\t;\n}\n"},
      {"  # a", "# a\n"},
      // Line ends and the byte order mark.
      {"\xEF\xBB\xBF INT A{ # a\r\nID=1;\r\n\r\n\r\n}",
       "\xEF\xBB\xBFINT A { # a\r\n\tID = 1;\r\n\r\n}\r\n"},
      {"# a\r\nINT A {\n}\n\n", "# a\nINT A {\n}\n\n"},
      {"INT A {\r\n\r\n\r\n} oops\n\n", "INT A {\n\n} oops\n\n"},
      {"\xEF\xBB\xBF# a", "\xEF\xBB\xBF# a\n"},
      // What is broken stays, and so do the blanks around it.
      {"INT A {ID  =  1;\n  ID  5;  # a\n\n\n    DESCR=\"x\";ID=2;}",
       "INT A {\n\tID = 1;\n  ID  5;  # a\n\n\n    DESCR = \"x\";\n\tID = 2;\n}\n"},
      {"INT A{ DESCR = \"open;\n  ID=5;}", "INT A { DESCR = \"open;\n  ID = 5;\n}\n"},
      {"INT A{DESCR = \"say \"hi\" now\";ID  = 1;}",
       "INT A {DESCR = \"say \"hi\" now\";ID = 1;\n}\n"},
      {"INT A{}  oops  {  }  INT B{}", "INT A {\n}  oops  {  }  INT B {\n}\n"},
      {"INT A  {ID=1;\n\n\nINT B{}  }  ", "INT A  {ID=1;\n\n\nINT B {\n}  }  "},
  };
  for (const auto& [text, expected] : cases) {
    EXPECT_EQ(syntax::format(text).text, expected) << text;
    EXPECT_EQ(syntax::format(syntax::read(text)).text, expected) << text;
  }
}

TEST(Format, KnowsOtherWords) {
  const std::string text = "INT A { ID = 1; } # a\n";
  EXPECT_TRUE(syntax::same_words(text, "INT\nA{ID=1;}# a\r\n"));
  for (const char* other :
       {"INT A { ID = 1; } # b\n", "INT A { ID = 1; }", "INT A # a\n{ ID = 1; }",
        "int A { ID = 1; } # a", "\xEF\xBB\xBFINT A { ID = 1; } # a\n"})
    EXPECT_FALSE(syntax::same_words(text, other)) << other;
}

TEST(Format, ChangesNeitherMeaningNorWordsNorWhatIsFormatted) {
  std::mt19937 chance(3);
  size_t read_count = 0;
  for (std::string text : all_texts()) {
    for (int i = 0; i < 4; ++i) {
      const std::string pretty = syntax::format(text).text;
      ASSERT_TRUE(syntax::same_words(text, pretty)) << text << "\n---\n" << pretty;
      ASSERT_EQ(syntax::format(pretty).text, pretty) << text;
      lists before, after;
      const int result = before.read(text);
      ASSERT_EQ(after.read(pretty), result) << text << reader_error();
      ASSERT_EQ(after.text(), before.text()) << text;
      read_count += result == 1 ? 1 : 0;
      text = changed(text, mutate(chance, text));
    }
  }
  EXPECT_GT(read_count, 100u);
  take_log();
}
