#include <gtest/gtest.h>

#include <fcntl.h>

#include <filesystem>
#include <fstream>
#include <vector>

#include "dparse/read/reader.h"
#include "language.h"

// The lines of a file beside this one, comments left out, and an empty one at the end.
static std::vector<std::string> lines_of(const char* name) {
  std::ifstream data(std::filesystem::path(TAV_DPARSE_DATA) / name);
  std::vector<std::string> lines;
  for (std::string line; std::getline(data, line);)
    if (line.rfind("//", 0) != 0) lines.push_back(line);
  lines.push_back("");
  EXPECT_GT(lines.size(), 50u) << name;
  return lines;
}

TEST(Reader, Definitions) {
  std::string paragraph;
  for (const std::string& line : lines_of("definitions.txt")) {
    if (!line.empty()) paragraph += (paragraph.empty() ? "" : " ") + line;
    if (!line.empty() || paragraph.empty()) continue;
    const size_t arrow = paragraph.find(" => ");
    lists read;
    EXPECT_EQ(read.read(paragraph.substr(0, arrow)), 1) << paragraph << reader_error();
    EXPECT_EQ(read.text(), paragraph.substr(arrow + 4));
    paragraph.clear();
  }
  lists none;
  EXPECT_EQ(none.read(""), 1);
  EXPECT_EQ(none.read("# only a comment"), 1);
  EXPECT_EQ(none.text() + take_log(), "");
}

// The names in failures.txt, replaced in this order, in inputs and in expected texts.
static const std::pair<std::string, std::string> INPUT_NAMES[] = {
    {"$", "\n"},
    {"CLASS{", "STORABLE CLASS /a {"},
    {"ENTRY{", "STORABLE CLASS /a { ARRAY L { INT F {"},
    {"IMPL ", "STORABLE CLASS /a IMPLEMENTATION "},
    {"LONG", "1234567890123456789012345678901"}};
static const std::pair<std::string, std::string> TEXT_NAMES[] = {
    {"LONG", "1234567890123456789012345678901"},
    {"TOP", "Invalide Attribute or field type"},
    {"INNER", "Invalid Attribute or field type"},
    {"| DEEP", "| FIELD | FIELD | FIELD | INTERFACE"},
    {"| IMPL", "| Error: Unable to parse storable class implementation definition"},
    {"| INTERFACE", "| Error: Unable to parse storable class interface definition"},
    {"| FIELD", "| Error: Unable to parse field"},
    {"| ID", "| Error: Unable to parse field id"}};

template <class Names>
static std::string spelled(std::string text, const Names& names) {
  for (const auto& [name, meaning] : names)
    for (size_t at = text.find(name); at != text.npos; at = text.find(name, at + meaning.size()))
      text.replace(at, name.size(), meaning);
  return text;
}

TEST(Reader, Failures) {
  for (const std::string& failure : lines_of("failures.txt")) {
    if (failure.empty()) continue;
    const size_t first = failure.find(" => "), second = failure.find(" =>", first + 4);
    const std::string text = spelled(failure.substr(0, first), INPUT_NAMES);
    const std::string error = spelled(failure.substr(first + 4, second - first - 4), TEXT_NAMES);
    std::string log = spelled(failure.substr(second + 3), TEXT_NAMES);
    if (!log.empty()) log.erase(0, 1);
    if (log[0] == '*') log.replace(0, 1, error.substr(error.find(": ") + 2));
    EXPECT_EQ(lists().read(text), -1) << text;
    EXPECT_EQ(reader_error(), error) << text;
    EXPECT_EQ(take_log(), log) << text;
  }
}

TEST(Reader, AFilterDropsOtherImplementationsAndAllowsRepeats) {
  lists read;
  const std::string block = "STORABLE CLASS /a IMPLEMENTATION ";
  EXPECT_EQ(
      read.read(block + "TESSEL7 { } " + block + "LDAPV3 { } " + block + "TESSEL7 { }", "tessel7"),
      1);
  EXPECT_EQ(read.text(), "OBJ_DESC[0]{NAME=\"/a\"} OBJ_DESC[1]{NAME=\"/a\"}");
  EXPECT_EQ(read.read(block + "LDAPV3 { x }", "TESSEL7"), -1);
  take_log();
}

TEST(Reader, AUsedImplementationLeavesItsName) {
  lists read;
  const std::string text =
      "STORABLE CLASS /a IMPLEMENTATION TESSEL7 { SQL_TABLE = \"a_t\"; }"
      "STORABLE CLASS /b IMPLEMENTATION TESSEL7 { SQL_TABLE = \"b_t\"; }"
      "STORABLE CLASS /A IMPLEMENTATION TESSEL7 { }";
  const file stream = stream_of(text);
  std::string shown;
  EXPECT_EQ(dparseDefFile(stream.get(), &read.fields, &read.classes, &read.impls,
                          [&](tav_flist_t* implementation) {
                            shown += text_of(implementation) + ";";
                            return shown.find("/b") == shown.npos;
                          }),
            -1);
  EXPECT_EQ(shown, "NAME=\"/a\" SQL_TABLE=\"a_t\";NAME=\"/b\" SQL_TABLE=\"b_t\";");
  EXPECT_EQ(read.text(), "OBJ_DESC[0]{NAME=\"/a\"} OBJ_DESC[1]{NAME=\"/b\" SQL_TABLE=\"b_t\"}");
  take_log();
}

TEST(Reader, ListsGrowOverFilesAndKeepWhatStoodBeforeAFailure) {
  lists read;
  EXPECT_EQ(read.read("INT A { }"), 1);
  EXPECT_EQ(read.read("INT B { } ;"), -1);
  EXPECT_EQ(reader_error(), "1: Invalid token ';'");
  EXPECT_EQ(read.read("\n"), 1);
  EXPECT_EQ(reader_error(), "2: ");
  EXPECT_EQ(read.text(),
            "FIELD[0]{FIELD_NAME=\"A\" FIELD_TYPE=1} FIELD[1]{FIELD_NAME=\"B\" FIELD_TYPE=1}");
}

TEST(Reader, EntriesOnTheirOwn) {
  const dd_flist parent(tav_flist_create(nullptr));
  EXPECT_EQ(dparseClassField(stream_of("F { } x").get(), parent.get(), DPARSE_KEY_INT), 1);
  EXPECT_EQ(dparseClassField(stream_of("G { x").get(), parent.get(), DPARSE_KEY_INT), -1);
  dparse_errmsg[0] = '\0';
  EXPECT_EQ(dparseImplClassField(stream_of("G { }").get(), parent.get(), DPARSE_KEY_UINT), -1);
  EXPECT_STREQ(dparseGetErrMsg(), "Invalid field type");
  EXPECT_EQ(dparseImplClassFieldLdapV3(stream_of("G { }").get(), parent.get(), DPARSE_KEY_OBJ), 1);
  EXPECT_EQ(
      text_of(parent.get()),
      "OBJ_ELEM[0]{FIELD_NAME=\"F\" FIELD_TYPE=1} OBJ_ELEM[1]{FIELD_NAME=\"G\" FIELD_TYPE=11}");
  take_log();
}

static std::string nested(int levels) {
  std::string text = "STORABLE CLASS /a {";
  for (int i = 0; i < levels; ++i) text += " ARRAY F {\n";
  return text + std::string(static_cast<size_t>(levels) + 1, '}');
}

TEST(Reader, DeepNestingIsReadUpToALimit) {
  lists read;
  EXPECT_EQ(read.read(nested(dparse::MAX_DEPTH)), 1);
  EXPECT_EQ(lists().read(nested(dparse::MAX_DEPTH + 1)), -1);
  EXPECT_EQ(reader_error(), "10241: Field entries are nested too deep, the limit is 10240 levels");
  take_log();
}

TEST(Reader, WhatCannotBeReadIsNoSuccess) {
  lists read;
  const file folder(fdopen(open("/", O_RDONLY), "r"));
  EXPECT_EQ(dparseDefFile(folder.get(), &read.fields, &read.classes, &read.impls),
            dparse::UNREADABLE);
  EXPECT_STREQ(dparseGetErrMsg(), "");
  // A string that seems not to end, since the rest cannot be read.
  const auto give = [](void* times, char* to, size_t) -> ssize_t {
    constexpr std::string_view START = "STRING A { DESCR = \"...";
    return ++*static_cast<int*>(times) > 1 ? -1 : static_cast<ssize_t>(START.copy(to, 100));
  };
  int times = 0;
  const file broken(fopencookie(&times, "r", {give, nullptr, nullptr, nullptr}));
  EXPECT_EQ(dparseDefFile(broken.get(), &read.fields, &read.classes, &read.impls),
            dparse::UNREADABLE);
  EXPECT_STREQ(dparseGetErrMsg(), "");
  take_log();
}
