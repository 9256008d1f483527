// Every attribute of the table, from the language's text to the dictionary and back.
#include <gtest/gtest.h>

#include <map>

#include "dd/attributes.h"
#include "tests/tool/workshop.h"

namespace {

// What the language reads and never writes. A directory's attributes are not here: the tool drops
// them, so they are given to the data manager itself (tests/dm).
constexpr int UNWRITTEN[] = {DD_KEY_CREATE_ACCESS, DD_KEY_RESIDENCY_TYPE};
// What must be given: also in the version that lacks the others, with another value.
constexpr int REQUIRED[] = {DD_KEY_ID, DD_KEY_SQL_TABLE, DD_KEY_SQL_COLUMN};
// Another word for a column, which stands beside it in no entry.
constexpr int INSTEAD_OF_COLUMN = DD_KEY_SQL_COLUMN_PREFIX;

template <size_t N>
bool is_one_of(const int (&keywords)[N], int keyword) {
  return std::ranges::find(keywords, keyword) != std::end(keywords);
}

std::string keyword_of(const dd_attribute& row) {
  return std::string(
      std::ranges::find(DD_KEYWORD_TABLE, row.keyword, &dd_keyword_row::number)->text);
}

// A value as it is written; no other attribute has the same keyword and value.
std::string value_of(const dd_attribute& row, unsigned context) {
  static const std::map<int, std::string> WORDS = {{DD_KEY_ID, "20001"},
                                                   {DD_KEY_SEQ_START, "\"7\""},
                                                   {DD_KEY_IS_PARTITIONED, "\"1\""},
                                                   {DD_KEY_VIRTUAL_FLAG, "\"1\""},
                                                   {DD_KEY_RESIDENCY_TYPE, "\"1\""},
                                                   {DD_KEY_READ_ACCESS, "\"Brand\""},
                                                   {DD_KEY_WRITE_ACCESS, "\"Self\""},
                                                   {DD_KEY_CREATE_ACCESS, "Root"},
                                                   {DD_KEY_PARTITION_MODE, "\"Historic\""},
                                                   {DD_KEY_AUDIT_SCHEME, "\"EXPANDED\""},
                                                   {DD_KEY_CREATE, "Required"},
                                                   {DD_KEY_MODIFY, "Not_Writeable"},
                                                   {DD_KEY_ORDER, "2.5"},
                                                   {DD_KEY_QUERYABLE_ON_AUDIT, "YES"},
                                                   {DD_KEY_IGNORE_ON_AUDIT, "YES"}};
  const auto word = WORDS.find(row.keyword);
  if (word != WORDS.end()) return word->second;
  if (row.kind == dd_value_kind::NUMBER) return "1";
  return "\"" + keyword_of(row) + "_" + std::to_string(context) + "\"";
}

template <class Call>
void each_attribute(unsigned context, Call call) {
  for (const dd_attribute& row : DD_ATTRIBUTES) {
    const bool may_stand = (row.contexts & context) != 0 && row.keyword != DD_KEY_NONE;
    if (may_stand && row.keyword != INSTEAD_OF_COLUMN) call(row);
  }
}

std::string attributes(unsigned context, bool all) {
  std::string text;
  each_attribute(context, [&](const dd_attribute& row) {
    const bool is_required = is_one_of(REQUIRED, row.keyword);
    if (!all && !is_required) return;
    std::string value = value_of(row, context);
    if (!all) value.insert(value.size() - 1, "9");
    text += keyword_of(row) + " = " + value + ";\n";
  });
  return text;
}

std::string definitions(bool all) {
  const std::string head = "STORABLE CLASS /thing ";
  return "BUF T_FLD_A {\n" + attributes(DD_IN_DEFINITION, all) +
         "}\nSTRING T_FLD_B { ID = 20009; }\n" + head + "{\n" + attributes(DD_IN_CLASS, all) +
         "BUF T_FLD_A {\n" + attributes(DD_IN_ENTRY, all) + "}\nSTRING T_FLD_B { }\n}\n" + head +
         "IMPLEMENTATION TESSEL7 {\n" + attributes(DD_IN_SQL_CLASS, all) + "BUF T_FLD_A {\n" +
         attributes(DD_IN_SQL_ENTRY, all) +
         "}\nSTRING T_FLD_B { SQL_COLUMN_PREFIX = \"prefix\"; }\n}\n";
}

void deploy(const workshop& place, bool all) {
  place.write("it.def", definitions(all));
  EXPECT_EQ(place.run({"create", "it.def"}).err, "");
}

bool holds(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

// The line of a difference: "KEYWORD: old -> new".
bool tells(const std::string& diff, const dd_attribute& row, const std::string& value) {
  const std::string after = " -> " + value + "\n";
  for (size_t at = 0; (at = diff.find("~ " + keyword_of(row) + ": ", at)) != diff.npos; ++at) {
    const size_t end = diff.find('\n', at) + 1;
    if (end - at > after.size() && diff.compare(end - after.size(), after.size(), after) == 0) {
      return true;
    }
  }
  return false;
}

}  // namespace

TEST(attributes, come_back_in_the_export_and_show_in_a_comparison) {
  const workshop without, with;
  deploy(without, false);
  deploy(with, true);
  const std::string exported = with.run({"field", "-c"}).out + with.run({"class", "-nm"}).out;
  const std::string diff =
      without.run({"dict", "diff", "--with", "sqlite:" + with.path("dictionary.db")}).out;
  const std::string stored = with.dictionary();
  for (const unsigned context :
       {DD_IN_DEFINITION, DD_IN_CLASS, DD_IN_ENTRY, DD_IN_SQL_CLASS, DD_IN_SQL_ENTRY}) {
    each_attribute(context, [&](const dd_attribute& row) {
      const std::string value = value_of(row, context);
      const std::string line = keyword_of(row) + " = " + value + ";\n";
      EXPECT_TRUE(tells(diff, row, value)) << line << diff;
      if (is_one_of(UNWRITTEN, row.keyword)) return;
      EXPECT_TRUE(holds(exported, line)) << line << exported;
    });
  }
  EXPECT_TRUE(holds(stored, "\"create_access\":\"Root\"")) << stored;
  EXPECT_TRUE(holds(stored, "\"residency_type\":1")) << stored;
  EXPECT_TRUE(holds(stored, "\"sql_name\":\"prefix\"")) << stored;
}
