// Rules of lint's own: for each a text that breaks it, and what comes close and does not.
#include <gtest/gtest.h>

#include "lint/rules.h"
#include "lint/rules/echoes.h"
#include "lint/rules/own.h"
#include "tests/lint/findings.h"

struct own_case {
  std::vector<std::string> texts;
  const char* found;
};

static std::string field(const std::string& members) {
  return "INT F { ID = 20001; DESCR = \"a\"; " + members + "}\n";
}

static std::string long_text(size_t bytes, size_t tabs) {
  return std::string(bytes - tabs, 'a') + std::string(tabs, '\t');
}

static const std::vector<own_case> CASES = {
    {{"\xEF\xBB\xBF# nothing\n"}, "1:1 byte-order-mark"},
    {{"# a \xEF\xBB\xBF mark elsewhere\n"}, ""},

    {{field("DESCR = \"\xe4\"; ")}, "1:43 not-utf8"},
    {{field("DESCR = \"\xe4\"; DESCR = \"\xc3\xa4\"; ")}, ""},       // the last one counts
    {{field("DESCR = \"a\" \"\xed\xa0\x80\"; ")}, "1:47 not-utf8"},  // half of a pair
    {{field("") + field("DESCR = \"\xe4\"; ")}, ""},                 // a repeat is dropped
    {{"INT \xff { ID = 20001; DESCR = \"a\"; }"}, "1:5 not-utf8"},
    {{"STORABLE CLASS /a/b IMPLEMENTATION LDAPV3 { ATTRVAL = \"\xff\"; ATTRVAL = \"b\"; }"},
     "1:56 not-utf8"},  // both count
    {{"# \xe4 and \xe4\n" + field("# \xe4\n")}, "1:3 comment-not-utf8"},

    {{field("") + "INT G { ID = 20002; DESCR = \"\xe4\"; }"}, "2:30 not-utf8"},
    {{"STORABLE CLASS /a/b { DESCR = \"" + long_text(2047, 1) + "\"; }"}, "1:31 text-too-long"},

    {{field("DESCR = \"" + long_text(2047, 0) + "\"; ")}, ""},
    {{field("DESCR = \"" + long_text(2047, 1) + "\"; ")}, "1:42 text-too-long"},
    {{field("DESCR = \"" + long_text(1000, 0) + "\" \"" + long_text(1047, 1) + "\"; ")},
     "1:42 text-too-long"},
    {{field("DESCR = \"" + long_text(2048, 0) + "\"; ")}, ""},  // an error of syntax

    {{"INT F { DESCR = \"a\"; }"}, "1:5 missing-number"},
    {{field(""), "INT F { DESCR = \"a\"; }"}, "b:1:5 defined-in-several-files"},

    {{"INT F { ID = 9999; DESCR = \"a\"; } INT G { ID = 10000; DESCR = \"a\"; }"},
     "1:14 number-outside-range"},
    {{"POID tav_fld_poid { ID = 16; }"}, ""},

    {{"INT F { ID = 20001; DESCR = \" \"; } STORABLE CLASS /a/b { }"},
     "1:5 missing-description, 1:5 unused-field, 1:51 missing-description"},
    {{field("") + "STORABLE CLASS /a/b { DESCR = \"a\"; INT f { } }"},
     "2:16 interface-without-implementation"},
    {{field("") + field("") + field("") + "STORABLE CLASS /a/b { DESCR = \"a\"; INT f { } }"},
     "4:16 interface-without-implementation"},  // each of them is used
    {{field(""), field("")}, "b:1:5 defined-in-several-files"},
    {{field(""), "STRING F { DESCR = \"a\"; }"}, ""},           // another type is an error
    {{field(""), "INT F { ID = 20002; DESCR = \"a\"; }"}, ""},  // and so is another number
    {{"INT F { ID = 4294987297; DESCR = \"a\"; }"}, "1:14 number-outside-range"},
    {{"INT F { ID = 9223372036854775808; DESCR = \"a\"; }"}, ""},  // an error of syntax
    {{field("") + field("")}, ""},

    {{"STORABLE CLASS /a/ { DESCR = \"a\"; } STORABLE CLASS //a { DESCR = \"a\"; }"},
     "1:16 name-refused, 1:52 name-refused"},
    {{"STORABLE CLASS /a { DESCR = \"a\"; }"}, "1:16 interface-without-implementation"},

    {{"STORABLE CLASS /a IMPLEMENTATION TESSEL7 { SQL_TABLE = \"Order\"; INT F { SQL_COLUMN = "
      "\"user\"; } INT G { SQL_COLUMN = \"users\"; } }"},
     "1:56 reserved-word, 1:86 reserved-word"},

    {{"STORABLE CLASS /a/b { DESCR = \"a\"; INT F { ORDER = 7; } INT G { ORDER = 07.0; } ARRAY H { "
      "ORDER = 0; INT F { ORDER = 7; } } INT I { ORDER = 0.0; } } STORABLE CLASS /a/b "
      "IMPLEMENTATION TESSEL7 { }"},
     "1:73 repeated-order"},
};

static std::string own_in(const std::vector<std::string>& texts,
                          const lint::own_options& options = {}) {
  const auto sources = sources_of(texts);
  lint::result result;
  result.told = lint::check_own(lint::index_of(sources), options).told;
  return shown(sources, result);
}

TEST(own_rules, find_what_they_are_for_and_nothing_else) {
  for (const own_case& each : CASES) EXPECT_EQ(own_in(each.texts), each.found) << each.texts[0];
}

TEST(own_rules, take_ranges_patterns_and_other_users) {
  lint::own_options options;
  options.first_number = options.last_number = 20001;
  for (auto& patterns : options.patterns) {
    for (const char* text : {"x+", "[/A-Z]{1,2}"})
      ASSERT_TRUE(lint::read_pattern(text, patterns.emplace_back()));
  }
  options.is_used_elsewhere = [](std::string_view name) { return name == "F"; };
  EXPECT_EQ(own_in({"INT F { ID = 20001; DESCR = \"a\"; } INT FFF { ID = 20002; DESCR = \"a\"; }\n"
                    "STORABLE CLASS /A { DESCR = \"a\"; } STORABLE CLASS /x { DESCR = \"a\"; }\n"
                    "STORABLE CLASS /A IMPLEMENTATION TESSEL7 { SQL_TABLE = \"xx\"; INT F { "
                    "SQL_COLUMN = \"y\"; } }"},
                   options),
            "1:40 name-pattern, 1:51 number-outside-range, 1:40 unused-field, 2:51 name-pattern, "
            "2:51 interface-without-implementation, 3:83 name-pattern");
}

static bool fits(const std::string& text, const std::string& name) {
  lint::name_pattern pattern;
  return lint::read_pattern(text, pattern) && lint::fits(pattern, name);
}

TEST(name_patterns, are_of_whole_names_and_end_in_time) {
  EXPECT_TRUE(fits("a|[b-d]{1,300}_t", "bcd_t"));
  EXPECT_FALSE(fits("a|b", "ab"));
  EXPECT_FALSE(fits("a.", "xab"));
  EXPECT_FALSE(fits("(a|aa)+b", std::string(2000, 'a')));  // goes back 2^400 times, or not at all
  lint::name_pattern pattern;
  EXPECT_TRUE(lint::read_pattern(std::string(1000, 'a'), pattern));
  EXPECT_FALSE(lint::read_pattern(std::string(1001, 'a'), pattern));
  EXPECT_FALSE(lint::read_pattern(std::string(996, 'a') + "b{1}", pattern));
  // The last one's number, which counts nothing, would make the product a multiple of 2^64.
  for (const char* text :
       {"(", "a**(", "\\d+", "(a)\\1", "(a)(b)\\2", "((a{40}){40}){40}", "a{999}{9}", "[b", "\\az",
        "\\z", "\\A", "\\Z", "\\0", "(a)\\9", "[}{1152921504606846976}](a{40}){40}abcdefghijklm"})
    EXPECT_FALSE(lint::read_pattern(text, pattern)) << text;
}

// What the reader and lint's own rules find together.
static std::string all_in(const std::string& text, const std::vector<lint::refusal>& refused = {}) {
  const auto sources = sources_of({text});
  lint::world world;
  world.refuse = [&](const lint::deployment&) { return refused; };
  world.own = [](const lint::index& all, size_t) { return lint::check_own(all, {}).told; };
  lint::result result = lint::lint(sources, world);
  lint::drop_echoes(result.told);
  return shown(sources, result);
}

TEST(own_rules, are_silent_where_an_error_says_the_same) {
  EXPECT_EQ(all_in("\xEF\xBB\xBF" + field("")), "1:1 invalid-token");
  EXPECT_EQ(all_in("INT F { ID = -3; DESCR = \"a\"; }"), "1:14 invalid-id");
  EXPECT_EQ(all_in("INT F { DESCR = \"a\"; }", {{.field = "F", .attribute = "ID"}}),
            "1:5 field-refused");
  EXPECT_EQ(
      all_in("INT F { ID = 20001; DESCR = \"\xe4\"; }", {{.field = "F", .attribute = "DESCR"}}),
      "1:29 field-refused");
  EXPECT_EQ(all_in("INT F { ID = 7; DESCR = \"a\"; }"), "1:14 number-outside-range");
  EXPECT_EQ(all_in("STORABLE CLASS /a { STRING X { } }\n"
                   "STORABLE CLASS /a IMPLEMENTATION TESSEL7 { SQL_TABLE = \"t\"; }"),
            "1:16 missing-description, 1:28 missing-field-definition");
  EXPECT_EQ(all_in("STORABLE CLASS b { STRING X { } }"),
            "1:16 class-name-without-slash, 1:16 missing-class-table, 1:16 missing-description, "
            "1:16 interface-without-implementation, 1:27 field-not-defined");
}
