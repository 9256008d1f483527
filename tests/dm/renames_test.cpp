// What things were called, of a journal that counts how often it is walked.
#include "dict/history/renames.h"

#include <gtest/gtest.h>

static int walks;

static bool give(dm::store*, const dm::journal_range&, dm::visitor<dm::journal_record> visitor,
                 dm::problem&) {
  static const struct {
    int64_t number;
    const char *kind, *detail;
  } rows[] = {
      {9, "change", R"({"rename":"class","from":"/b","to":"/C"})"},
      {8, "classes", R"({"rename":"class","from":"/none","to":"/b"})"},
      {5, "change", R"({"rename":"field","from":"F","to":"G"})"},
      {3, "change", R"({"rename":"class","from":"/a/x","to":"/b/d"})"},
      {2, "change", R"({"rename":"class","from":"/a","to":"/b"})"},
  };
  ++walks;
  for (const auto& row : rows) {
    dm::journal_record record;
    record.number = row.number;
    record.kind = row.kind;
    record.detail = row.detail;
    if (!visitor.call(visitor.context, record)) return true;
  }
  return true;
}

TEST(renames, of_many_things_are_found_on_one_walk) {
  dm::store_calls calls{};
  calls.journal = give;
  dm::store store{&calls};
  dm::problem why;
  std::vector<dict::named_thing> things{{dm::change_of::CLASS, "/c"},
                                        {dm::change_of::CLASS, "/C/D"},
                                        {dm::change_of::CLASS, "/c/e"},
                                        {dm::change_of::FIELD, "g"}};
  ASSERT_TRUE(dict::find_names(store, things, why));
  std::string told;
  for (const dict::named_thing& thing : things) {
    for (const dict::past_name& name : thing.names.in("")) {
      told.append(name.key).append(" ").append(std::to_string(name.from)).append(", ");
    }
    told += "\n";
  }
  EXPECT_EQ(told,
            "/c 9, /b 2, /a 0, \n"
            "/c/d 9, /b/d 3, /a/x 0, \n"
            "/c/e 9, /b/e 2, /a/e 0, \n"
            "g 5, f 0, \n");
  EXPECT_EQ(walks, 1);
}
