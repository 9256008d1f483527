#include <gtest/gtest.h>

#include <vector>

#include <strings.h>

#include "dparse/read/lexer.h"
#include "language.h"

using token_reader = int(FILE* stream, char* text, size_t size);

static std::string tokens(FILE* stream, token_reader* read) {
  char token[dparse::TEXT_SIZE];
  std::string all;
  dparse_lineno = 1;
  dparse_errmsg[0] = '\0';
  for (;;) {
    const int number = read(stream, token, sizeof token);
    all += std::to_string(number) + ":" + token + " ";
    if (number == DPARSE_TOKEN_EOF) return all + reader_error();
  }
}

static std::string tokens(const std::string& text, bool buffered,
                          token_reader* read = dparseGetToken) {
  return tokens(stream_of(text, buffered).get(), read);
}

static const std::string LONG(2047, 'w');
static const std::string OVERFLOW_TEXT = "Buffer overflow, tokens are limited to 2048 characters";

// Text, then number:text of each token, and at the end line: message.
TEST(Lexer, Tokens) {
  const std::pair<std::string, std::string> cases[] = {
      {"STRING MY_FIELD{ID=5;}", "2:STRING 26:MY_FIELD 22:{ 15:ID 24:= 26:5 25:; 23:} 27: 1: "},
      {"Storable storable STORABLE", "20:Storable 20:storable 20:STORABLE 27: 1: "},
      {"# one\n#two\n\t# three", "27: 3: "},
      {"a # x\n b", "26:a 26:b 27: 2: "},
      {"foo#bar a\"b \"x#y\"", "26:foo#bar 26:a\"b 29:x#y 27: 1: "},
      {"\"\"", "29: 27: 1: "},
      {"\"a\\\"b", "29:a\\ 26:b 27: 1: "},
      {"a\v\f\r\n\n", "26:a 27: 3: "},
      {"\"open\nb", "28:open 26:b 27: 2: Expecting \""},
      {"\"open", "28:open 27: 1: Expecting \""},
      {"\xff\x80 \xa0", "26:\xff\x80 26:\xa0 27: 1: "},
      {std::string("a\0b \"c\0d\"", 9), "26:a 0: 26:b 28:c 26:d\" 27: 1: Expecting \""},
      {LONG.substr(1) + ";", "26:" + LONG.substr(1) + " 25:; 27: 1: "},
      {LONG + ";", "26:" + LONG + " 25:; 27: 1: " + OVERFLOW_TEXT},
      {LONG + "abc", "26:" + LONG + " 26:abc 27: 1: " + OVERFLOW_TEXT},
      {LONG + "#abc\n;", "26:" + LONG + " 25:; 27: 2: " + OVERFLOW_TEXT},
      {LONG + "\"abc\"", "26:" + LONG + " 29:abc 27: 1: " + OVERFLOW_TEXT},
      {"\"" + LONG + "\"", "29:" + LONG + " 27: 1: "},
      {"\"" + LONG + "xy", "28:" + LONG + " 26:y 27: 1: Expecting \""},
      {"\"" + LONG + "\ny", "28:" + LONG + " 26:y 27: 2: Expecting \""},
  };
  for (const auto& [text, expected] : cases) {
    EXPECT_EQ(tokens(text, true), expected);
    EXPECT_EQ(tokens(text, false), expected);
  }
  take_log();
}

static int next_string(FILE* stream, char* text, size_t size) {
  dparse::token_text token;
  const int number = dparse::next_string(stream, token);
  EXPECT_EQ(tav_strlcpy(text, token.text, size), token.length);
  return number;
}

// Tokens with enough behind them are taken whole from what was read ahead.
TEST(Lexer, TokensAheadAreThoseReadByCharacter) {
  for (const unsigned size : {1u, 17u, 18u, 23u, 24u, 31u, 32u, 33u, 2045u, 2046u, 2047u, 2048u}) {
    const std::string word(size, 'w');
    const std::string nul(1, '\0');
    const std::string text = "\"" + word + "\"" + word + "=Descr\r\n# \"\n\v\"" + word + "\n\"x{" +
                             word + nul + word + "#;}\"" + word + nul + word + "\"" +
                             std::string(40, ' ');
    EXPECT_EQ(tokens(text, true, next_string), tokens(text, false)) << size;
  }
}

static int next(FILE* stream, char* text, size_t size) {
  dparse::token_text token;
  const int number = dparse::next_token(stream, token);
  EXPECT_EQ(tav_strlcpy(text, token.text, size), token.length);
  return number;
}

// What was read ahead may end anywhere in a token.
TEST(Lexer, TokensAreWholeOverTheEndOfTheBuffer) {
  char buffer[4096];
  for (const size_t size : {1u, 31u, 32u, 33u}) {
    for (size_t left = 0; left <= 2 * size + 6; ++left) {
      const std::string word(size, 'w'), string(size, 's');
      // The first token is read by character and fills the buffer.
      std::string before(sizeof buffer - left, ' ');
      before[0] = '{';
      const std::string text = before + word + "\n\"" + string + "\";";
      for (token_reader* read : {&next, &next_string}) {
        const file stream = stream_of(text);
        std::setvbuf(stream.get(), buffer, _IOFBF, sizeof buffer);
        EXPECT_EQ(tokens(stream.get(), read), "22:{ 26:" + word + " 29:" + string + " 25:; 27: 2: ")
            << size << ", " << left;
      }
    }
  }
}

// Of a word that finds no room nothing is taken.
TEST(Lexer, TextsAreCutToTheBuffer) {
  const file stream = stream_of("{ab");
  char small[2] = "x";
  EXPECT_EQ(dparseGetToken(stream.get(), small, 1), DPARSE_KEY_OPEN);
  EXPECT_STREQ(small, "");
  EXPECT_EQ(dparseGetToken(stream.get(), small, 1), DPARSE_TOKEN_EMPTY);
  EXPECT_STREQ(small, "");
  EXPECT_EQ(dparseGetToken(stream.get(), small, 2), DPARSE_TOKEN_WORD);
  EXPECT_STREQ(small, "a");
  EXPECT_EQ(dparse_fgetc(stream.get()), 'b');
}

TEST(Lexer, WhatEndsAWordIsPushedBackUncounted) {
  const std::string text = "word\n{x";
  const file stream = stream_of(text);
  char small[4];
  dparse_lineno = 1;
  EXPECT_EQ(dparseGetToken(stream.get(), nullptr, 0), DPARSE_TOKEN_WORD);
  EXPECT_EQ(dparse_lineno, 1);
  EXPECT_EQ(dparse_fgetc(stream.get()), '\n');
  EXPECT_EQ(dparse_lineno, 2);
  dparse_ungetc('\n', stream.get());
  EXPECT_EQ(dparse_lineno, 1);
  EXPECT_EQ(dparseSkipSpaceComs(stream.get()), 1);
  EXPECT_EQ(dparse_lineno, 2);
  EXPECT_EQ(std::fgetc(stream.get()), '{');
  dparse_ungetc(EOF, stream.get());
  EXPECT_EQ(dparseGetToken(stream.get(), small, sizeof small), DPARSE_TOKEN_WORD);
  EXPECT_STREQ(small, "x");
}

// The search that the stored order stands for.
static int linear(const char* word) {
  for (const dparse::token_row* row = token_table; row->text != nullptr; ++row)
    if (strcasecmp(row->text, word) == 0) return row->number;
  return DPARSE_TOKEN_WORD;
}

TEST(Lexer, KeywordsAreFoundAsByAWalkOfTheTable) {
  for (const dparse::token_row* row = token_table; row->text != nullptr; ++row) {
    const std::string text = row->text;
    std::string small = text;
    for (char& c : small) c = static_cast<char>(c | (c >= 'A' && c <= 'Z' ? 0x20 : 0));
    EXPECT_EQ(dparse::keyword_number(small.data(), small.size()), row->number);
    for (size_t i = 0; i < text.size(); ++i) {
      for (const char c : {'_', 'A', 'Q', '@', '\x01', '\xe1'}) {
        std::string other = text;
        other[i] = c;
        EXPECT_EQ(dparse::keyword_number(other.data(), other.size()), linear(other.c_str()))
            << other;
      }
      EXPECT_EQ(dparse::keyword_number(text.data(), i), linear(text.substr(0, i).c_str()));
    }
  }
}

TEST(Lexer, TextsAreEqualInAnyCase) {
  EXPECT_EQ(dparseIsEqual("/Account", "/aCCOUNT"), 0);
  EXPECT_NE(dparseIsEqual("/account", "/accounts"), 0);
}

TEST(State, TheFirstMessageStandsAndLongNamesAreCut) {
  dparse_errmsg[0] = '\0';
  dparseSetErrMsg(nullptr);
  dparseSetErrMsg("first %s %n");
  dparseSetErrMsg("second");
  EXPECT_STREQ(dparseGetErrMsg(), "first %s %n");
  dparseSetFname(std::string(3000, 'n').c_str());
  EXPECT_EQ(dparseGetFname(), std::string(2046, 'n'));
  dparseSetFname(nullptr);
  EXPECT_STREQ(dparseGetFname(), "");
}

struct value_case {
  std::string text;
  int result;
  std::string value;  // or the message, recorded and logged
};

static void expect_value(const value_case& c, int result, const std::string& value) {
  EXPECT_EQ(result, c.result) << c.text;
  EXPECT_EQ(result < 0 ? dparseGetErrMsg() : value, c.value) << c.text;
  const std::string log = take_log();
  // What the lexer records is not logged; what the value makes of it is.
  const bool logged = result < 0 && c.value != "Expecting \"";
  EXPECT_EQ(!log.empty() && log.find(c.value) == 0, logged) << log;
  dparse_errmsg[0] = '\0';
}

TEST(Values, Strings) {
  const std::string half(1024, 'h');
  const value_case cases[] = {
      {"= \"a\" \"b\" # x\n \"c\";", 1, "abc"},
      {R"(="l\n\t\\n\q\";)", 1, "l\n\t\\\\n\\q\\"},
      {"=\"\";", 1, ""},
      {"\"a\";", -1, "= Expected"},
      {"= word;", -1, "Quoted string (ie, \"abc\") expected instead of 'word'"},
      {"= \"a\\t\"}", -1, "; expected after parsing string a\t,"},
      {"= \"a\" \"b", -1, "Expecting \""},
      {"= \"" + half + "\" \"" + half + "\";", -1,
       "Buffer overflow, tokens cannot exceed 2048 characters, parsing " + half},
      {"= \"" + half + "\" \"" + half.substr(1) + "\";", 1, half + half.substr(1)},
  };
  for (const value_case& c : cases) {
    char value[dparse::TEXT_SIZE];
    const file stream = stream_of(c.text);
    const int result = dparseString(stream.get(), value, sizeof value);
    expect_value(c, result, value);
  }
  char small[4];
  EXPECT_EQ(dparseString(stream_of("=\"abc\";").get(), small, sizeof small), 1);
  EXPECT_EQ(dparseString(stream_of("=\"ab\" \"cd\";").get(), small, sizeof small), -1);
  EXPECT_EQ(dparseString(stream_of("=\"abcd\";").get(), nullptr, 0), 1);
  // A larger output takes more, piece by piece; its size, terminator included, is the limit.
  for (const auto& [size, result] :
       {std::pair{3 * half.size() + 3, 1}, {3 * half.size() + 2, -1}}) {
    std::vector<char> large(size);
    const std::string text = "= \"" + half + "\" \"" + half + "\" \"\\n" + half + "\";";
    EXPECT_EQ(dparseString(stream_of(text).get(), large.data(), size), result);
    EXPECT_EQ(large.data(), result == 1 ? half + half + "\n" + half : "");
  }
  take_log();
}

TEST(Values, ZeroOrOne) {
  const value_case cases[] = {
      {"= 0;", 0, ""},
      {"= 1x;", 1, ""},
      {"= x;", 0, ""},
      {"= 4294967297;", 1, ""},
      {"= 2;", -1, "Invalid value for multivalued '2'"},
      {"= -1;", -1, "Invalid value for multivalued '-1'"},
      {"= YES;", -1, "0 or 1 expected instead of 'YES'"},
      {"= \"1\";", -1, "0 or 1 expected instead of '1'"},
      {"1;", -1, "= Expected"},
      {"= 1}", -1, "; Expected"},
  };
  for (const value_case& c : cases) {
    expect_value(c, dparseMultivalued(stream_of(c.text).get()), "");
  }
}

TEST(Values, AccessLevels) {
  const value_case cases[] = {
      {"= self;", 53, "Self"},
      {"= BRANDLINEAGE;", 54, "BrandLineage"},
      {"= Brand;", 55, "Brand"},
      {"= ANCESTRALLINEAGE;", 56, "AncestralLineage"},
      {"= Global;", 57, "Global"},
      {"= \"Silly\";", 53, "Self"},
      {"= \"Lineage\";", 54, "BrandLineage"},
      {"= \"brandlineage\";", 54, "BrandLineage"},
      {"= \"BrandLine\";", 55, "Brand"},
      {"= \"A\";", 56, "AncestralLineage"},
      {"= \"G\";", 57, "Global"},
      {"= \"self\";", -1, "Invalid Read/Write Access Level 'self'"},
      {"= \"Root\";", -1, "Invalid Read/Write Access Level 'Root'"},
      {"= ROOT;", -1, "Invalid Read/Write Access Level 'ROOT'"},
      {"= \"\";", -1, "Invalid Read/Write Access Level ''"},
      {"= Self}", -1, "; Expected"},
      {"Self;", -1, "= Expected"},
  };
  for (const value_case& c : cases) {
    char value[dparse::TEXT_SIZE];
    const file stream = stream_of(c.text);
    const int result = dparseReadWriteAccessLevel(stream.get(), value, sizeof value);
    expect_value(c, result, value);
  }
}
