// What the operations cannot do: any state that keeps the rules, in one transaction; and what a
// session meets that fetched before.
#include <sstream>

#include "bench.h"
#include "dict/check/check.h"
#include "dm/changes/changes.h"
#include "dm/journal/hash.h"
#include "dm/journal/read.h"
#include "dm/open.h"

using dm::change_of;
using dm::wanted_thing;

static wanted_thing field(const std::string& name, int number, int type = TAV_FLDT_STRING,
                          const std::string& descr = "") {
  const std::string about = descr.empty() ? "" : " " + descr;
  return {change_of::FIELD, name,
          std::to_string(number) + " " + std::to_string(type) + " 0 " + name + about};
}

// A class with a table, and string entries with columns named alike.
static wanted_thing storable(const std::string& name, const std::string& table,
                             const std::vector<std::string>& entries = {}) {
  std::string text;
  for (const std::string& entry : entries) {
    text += text.empty() ? ",\"entries\":[" : ",";
    text += R"({"name":")" + entry + R"(","type":)" + std::to_string(TAV_FLDT_STRING) +
            R"(,"sql_name":"c_)" + entry + "\"}";
  }
  return {change_of::CLASS, name,
          R"({"name":")" + name + R"(","sql_table":")" + table + "\"" +
              (entries.empty() ? "" : text + "]") + "}"};
}

static wanted_thing gone(const std::string& name) {
  return {name[0] == '/' ? change_of::CLASS : change_of::FIELD, name, {}};
}

class changes : public dictionary {
 protected:
  changes() {
    client admin(settings);
    EXPECT_EQ(admin.set_fields("STRING F_A 5000 About a.\nSTRING F_B 5001\nARRAY F_T 5002\n"),
              "ok");
    EXPECT_EQ(admin.set_classes("/a sql_table=t_a\n  STRING F_A sql_name=c_F_A\n"
                                "/a/b\n  ARRAY F_T sql_name=t_ab\n    STRING F_B sql_name=c_F_B\n"),
              "ok");
  }

  // "ok", or each refusal's sentence in a line.
  std::string change(const std::vector<wanted_thing>& wanted, dm::change_purpose purpose = {}) {
    dm::problem why;
    const dm::store_owner store = dm::open_dictionary(settings, {}, why);
    dm::change_result result;
    purpose.detail = "{}";
    const bool done = dm::change_things(*store, settings, 1, wanted, purpose, result);
    std::string told = result.failure.sentence;
    for (const auto& each : result.refused) told += each.why.sentence + "\n";
    EXPECT_EQ(done, told.empty());
    return done ? "ok" : told;
  }

  std::string check() const {
    dm::problem why;
    std::ostringstream told;
    const dm::store_owner store = dm::open_dictionary(settings, {}, why);
    dict::checker checked(*store, told);
    EXPECT_TRUE(store->calls->begin(store.get(), false, why) && dict::check_store(checked));
    return told.str();
  }
};

TEST_F(changes, write_what_the_operations_keep) {
  EXPECT_EQ(change({field("f_a", 5000), gone("F_B"), field("F_C", 5001), gone("/a/b"),
                    storable("/A", "t_ab", {"f_a", "F_C"}), storable("/b", "t_a")}),
            "ok");
  client reader(settings);
  EXPECT_EQ(reader.fields("F_A\nF_B\nF_C\n"), "STRING f_a 5000\nSTRING F_C 5001\n");
  EXPECT_EQ(reader.classes(),
            "{name:/A,sql_table:t_ab,entries:[{name:f_a,type:5,sql_name:c_f_a},"
            "{name:F_C,type:5,sql_name:c_F_C}]}\n{name:/b,sql_table:t_a}\n");
  EXPECT_EQ(query("SELECT folded, name FROM dd_tables ORDER BY 1"), "t_a|t_a\nt_ab|t_ab\n");
  EXPECT_EQ(query("SELECT counter FROM dd_databases"), "3\n");
  EXPECT_EQ(query("SELECT DISTINCT stamp FROM dd_classes"), "3\n");
  EXPECT_EQ(query("SELECT kind, changes FROM dd_journal WHERE number = 5"), "change|6\n");
  EXPECT_EQ(check(), "");
}

TEST_F(changes, are_refused_whole_with_every_reason) {
  static const struct {
    std::vector<wanted_thing> wanted;
    const char* refused;
  } ROWS[] = {
      {{gone("F_A"), gone("TAV_FLD_POID")},
       "Field 'TAV_FLD_POID' is predefined and cannot be deleted.\n"
       "Field 'F_A' cannot be deleted: class '/a' uses it.\n"},
      {{gone("/a")}, "Class '/a' cannot be deleted: class '/a/b' is below it.\n"},
      {{field("F_A", 5000, TAV_FLDT_INT)},
       "Field 'F_A' cannot get another type: class '/a' uses it.\n"},
      {{field("F_C", 5001), field("F_D", 5003), field("F_E", 5003)},
       "Field 'F_C' cannot have the number 5001: another field has it.\n"
       "Field 'F_E' cannot have the number 5003: another field has it.\n"},
      {{field("TAV_FLD_NAME", 5009)},
       "Field 'TAV_FLD_NAME' is predefined: nothing but its description can be changed.\n"},
      {{storable("/c", "t_ab", {"F_X"}), storable("/d/e", "")},
       "Class '/c', field 'F_X' is not defined in the database.\n"
       "Class '/c' has the table 't_ab', which another class has.\n"
       "Class '/d/e' has no superclass: '/d' is neither in the dictionary nor earlier in the "
       "list.\n"},
      {{{change_of::CLASS, "/a", "{\"name\":\"/b\"}"}, {change_of::FIELD, "F_A", "1 5 0 F_B"}},
       "Field 'F_A' cannot become what is wanted: that is no definition of it.\n"
       "Class '/a' cannot become what is wanted: that is no definition of it.\n"},
  };
  const std::string before = content();
  for (const auto& row : ROWS) {
    EXPECT_EQ(change(row.wanted), row.refused);
    EXPECT_EQ(content(), before);
  }
  settings.objects_writeable = false;
  EXPECT_NE(change({gone("/a/b")}).find("set 'objects_writeable = yes'"), std::string::npos);
  EXPECT_EQ(content(), before);
}

TEST_F(changes, leave_nothing_after_a_trial_or_where_there_is_nothing_to_do) {
  const std::string before = content();
  dm::change_purpose trial;
  trial.is_trial = true;
  EXPECT_EQ(change({gone("/a/b"), gone("F_T"), gone("F_B")}, trial), "ok");
  EXPECT_EQ(change({field("F_A", 5000, TAV_FLDT_STRING, "About a."), gone("F_X")}), "ok");
  EXPECT_EQ(content(), before);
  EXPECT_EQ(query("SELECT max(number) FROM dd_journal"), "4\n");
}

TEST_F(changes, are_refused_where_somebody_changed_what_was_seen) {
  dm::change_purpose seen;
  seen.seen_end = 4;
  seen.seen = {{change_of::FIELD, "F_B", dm::hash_of(*field("F_B", 5001).state)},
               {change_of::FIELD, "F_X", ""},
               {change_of::CLASS, "/a/c", ""}};
  dm::change_purpose trial = seen;
  trial.is_trial = true;
  EXPECT_EQ(change({field("F_C", 5005)}, trial), "ok");
  client(settings).set_fields("STRING F_B 5001 Described.\nSTRING F_X 5009\n");
  const std::string told = change({field("F_C", 5005)}, seen);
  EXPECT_EQ(told.find("The dictionary was changed by deployment 5 of "), 0u) << told;
  EXPECT_NE(told.find("\nField 'F_B' was changed by deployment 5 of "), told.npos) << told;
  EXPECT_NE(told.find("\nField 'F_X' was changed by deployment 5 of "), told.npos) << told;
  EXPECT_EQ(told.find("/a/c"), told.npos) << told;
}

TEST_F(changes, of_others_that_took_something_away_are_a_conflict) {
  client fields(settings), classes(settings), late(settings), fresh(settings);
  for (client* each : {&fields, &classes, &late}) each->fields(), each->classes();
  EXPECT_EQ(change({gone("/a/b"), storable("/a", "t_a"), gone("F_A"), field("F_C", 5000)}), "ok");
  fresh.fields(), fresh.classes();
  EXPECT_EQ(fields.set_fields("STRING F_D 5007\nSTRING F_A 5008\n"), "CONFLICT TAV_FLD_FIELD_NAME");
  fields.close();
  EXPECT_EQ(classes.set_classes("/c sql_table=t_c\n/A/b\n"), "CONFLICT TAV_FLD_NAME");
  EXPECT_EQ(late.set_fields("STRING F_D 5007\n"), "ok");  // beside it
  EXPECT_EQ(late.set_classes("/c sql_table=t_c\n"), "ok");
  EXPECT_EQ(late.set_classes("/a/b\n", 128), "CONFLICT TAV_FLD_NAME");
  EXPECT_EQ(fresh.set_fields("STRING F_A 5008\n"), "ok");
  EXPECT_EQ(fresh.set_classes("/a/b\n"), "ok");
}
