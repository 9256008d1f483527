// What the operations cannot do: any state that keeps the rules, in one transaction; and what a
// session meets that fetched before.
#include <algorithm>
#include <map>
#include <random>
#include <sstream>

#include "bench.h"
#include "dict/check/check.h"
#include "dm/changes/back.h"
#include "dm/changes/changes.h"
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
  EXPECT_EQ(change({field("F_!", 5007), storable("/c", "t_c", {"F_!"})}), "ok");
  EXPECT_EQ(change({gone("f_!")}), "Field 'F_!' cannot be deleted: class '/c' uses it.\n");
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
      {{gone("F_A"), gone("F_T")},
       "Field 'F_A' cannot be deleted: class '/a' uses it.\n"
       "Field 'F_T' cannot be deleted: class '/a/b' uses it.\n"},
      {{field("F_A", 5001)}, "Field 'F_A' cannot have the number 5001: another field has it.\n"},
      {{field("F_D", 16777216)},
       "Field 'F_D' has the number 16777216; numbers go from 1 to 16777215.\n"},
      {{field("F_C", 5001), field("F_D", 5003), field("F_E", 5003)},
       "Field 'F_C' cannot have the number 5001: another field has it.\n"
       "Field 'F_E' cannot have the number 5003: another field has it.\n"},
      {{field("TAV_FLD_NAME", 5009)},
       "Field 'TAV_FLD_NAME' is predefined: nothing but its description can be changed.\n"},
      {{field("TAV_FLD_NAME", DD_FIELD_ID_NUMBER(TAV_FLD_NAME), TAV_FLDT_INT)},
       "Field 'TAV_FLD_NAME' is predefined: nothing but its description can be changed.\n"},
      {{storable("/c", "t_ab", {"F_X"}), storable("/d/e", "")},
       "Class '/c', field 'F_X' is not defined in the database.\n"
       "Class '/c' has the table 't_ab', which class '/a/b' has.\n"
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
  std::vector<wanted_thing> many{field("F_C", 5001)};
  for (int i = 6000; i < 6200; ++i) many.push_back(field("F_" + std::to_string(i), i));
  EXPECT_EQ(change(many), "Field 'F_C' cannot have the number 5001: another field has it.\n");
  settings.objects_writeable = false;
  EXPECT_NE(change({gone("/a/b")}).find("set 'objects_writeable = yes'"), std::string::npos);
  EXPECT_EQ(content(), before);
}

TEST_F(changes, leave_nothing_after_a_trial_or_where_there_is_nothing_to_do) {
  const std::string before = content();
  dm::change_purpose trial;
  trial.is_trial = true;
  EXPECT_EQ(change({gone("/a/b"), gone("F_T"), gone("F_B")}, trial), "ok");
  EXPECT_EQ(
      change({field("F_C", 5003), field("F_D", 5004, TAV_FLDT_INT), storable("/c", "t_c", {"F_C"})},
             trial),
      "ok");
  EXPECT_EQ(change({field("F_A", 5000, TAV_FLDT_STRING, "About a."), gone("F_X")}), "ok");
  EXPECT_EQ(content(), before);
  EXPECT_EQ(query("SELECT max(number) FROM dd_journal"), "4\n");
}

TEST_F(changes, are_refused_where_somebody_changed_the_dictionary_since) {
  dm::change_purpose seen;
  seen.seen_end = 4;
  dm::change_purpose trial = seen;
  trial.is_trial = true;
  EXPECT_EQ(change({field("F_C", 5005)}, trial), "ok");
  client(settings).set_fields("STRING F_B 5001 Described.\nSTRING F_X 5009\n");
  const std::string told = change({field("F_C", 5005)}, seen);
  EXPECT_EQ(told.find("The dictionary was changed by deployment 5 of "), 0u) << told;
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

// --- Random sequences ----------------------------------------------------------------------------

using things = std::map<std::string, std::string>;  // states by name

namespace {

// A naive model of the dictionary, and of the ways to change it.
struct model {
  std::mt19937 chance{23};
  things now{};
  int serial = 0;

  int below(int end) { return std::uniform_int_distribution<int>(0, end - 1)(chance); }
  std::string a_field() { return "F_" + std::to_string(below(6)); }
  std::string a_class() {
    static const char* const NAMES[] = {"/a", "/b", "/a/x", "/b/x"};
    return NAMES[below(4)];
  }
  bool is_used(const std::string& name) const {
    const bool is_class = name[0] == '/';
    return std::any_of(now.begin(), now.end(), [&](const auto& each) {
      return each.first[0] == '/' &&
             (is_class ? each.first.rfind(name + "/", 0) == 0
                       : each.second.find("\"" + name + "\"") != each.second.npos);
    });
  }
  void put(const wanted_thing& thing) { now[thing.name] = *thing.state; }

  void put_class() {
    const std::string name = a_class(), top = name.substr(0, 2);
    std::vector<std::string> entries;
    for (int i = 0; i < 6; ++i) {
      const std::string field = "F_" + std::to_string(i);
      if (now.count(field) != 0 && below(2) == 0) entries.push_back(field);
    }
    if (name == top) put(storable(name, "t_" + std::to_string(++serial), entries));
    if (name != top && now.count(top) != 0) now[name] = "{\"name\":\"" + name + "\"}";
  }
  void put_field() {
    const std::string name = a_field();
    const int number = now.count(name) != 0 ? std::stoi(now[name]) : 5010 + below(1000000);
    put(field(name, number, TAV_FLDT_STRING, below(3) == 0 ? "" : std::to_string(below(9))));
  }
  void drop() {
    const std::string name = below(2) == 0 ? a_field() : a_class();
    if (!is_used(name)) now.erase(name);
  }
  // A field wherever its name stands, columns too; the class /a and what is below it.
  void rename() {
    const bool is_field = below(2) == 0;
    const std::string from = is_field ? a_field() : "/a", to = is_field ? a_field() : "/b";
    if (now.count(from) == 0 || now.count(to) != 0 || is_used(to)) return;
    const std::string mark = is_field ? from : "\"name\":\"" + from;
    const std::string put = is_field ? to : "\"name\":\"" + to;
    things renamed;
    for (auto [name, state] : now) {
      for (size_t at = 0; (at = state.find(mark, at)) != state.npos; at += put.size()) {
        state.replace(at, mark.size(), put);
      }
      const bool is_it = name.rfind(from, 0) == 0;
      renamed[is_it ? to + name.substr(from.size()) : name] = state;
    }
    now = std::move(renamed);
  }
  void step() {
    switch (below(5)) {
      case 0:
        return put_field();
      case 1:
        return put_class();
      case 2:
        return drop();
      case 3:
        return rename();
      default:
        put_field(), put_class(), put_field();
    }
  }
};

}  // namespace

static std::vector<wanted_thing> difference(const things& before, const things& after) {
  std::vector<wanted_thing> wanted;
  for (const auto& [name, state] : before) {
    if (after.count(name) == 0) wanted.push_back(gone(name));
  }
  for (const auto& [name, state] : after) {
    const change_of what = name[0] == '/' ? change_of::CLASS : change_of::FIELD;
    const auto old = before.find(name);
    if (old == before.end() || old->second != state) wanted.push_back({what, name, state});
  }
  return wanted;
}

class sequences_of_changes : public changes {
 protected:
  things stored() const {
    things found;
    dm::problem why;
    const dm::store_owner store = dm::open_dictionary(settings, {}, why);
    auto take_field = [&](const dm::field_row& row) {
      if (row.flags == 0) found[row.name] = dm::field_state(row);
      return true;
    };
    auto take_class = [&](const dm::class_row& row) {
      return found[row.name] = row.definition, true;
    };
    EXPECT_TRUE(
        store->calls->begin(store.get(), false, why) &&
        store->calls->fields(store.get(), 1, {}, dm::visit<dm::field_row>(take_field), why) &&
        store->calls->classes(store.get(), 1, {}, dm::visit<dm::class_row>(take_class), why));
    return found;
  }

  // By a deployment where that can do it: a new field.
  std::string apply(const std::vector<wanted_thing>& wanted, const things& before) {
    const wanted_thing& first = wanted.front();
    const bool is_new = first.what == change_of::FIELD && before.count(first.name) == 0;
    if (wanted.size() != 1 || !is_new) return change(wanted);
    std::string state = *first.state;
    dm::field_row row{};
    dm::read_field_state(state, row);
    client admin(settings);
    admin.set_fields(dm::join({"STRING ", row.name, " ", std::to_string(row.number), " ",
                               row.descr != nullptr ? row.descr : ""}));
    return admin.close();
  }

  std::string undo_last() {
    dm::problem why;
    dm::journal_head end;
    dm::change_result result;
    std::vector<wanted_thing> wanted;
    const dm::store_owner store = dm::open_dictionary(settings, {}, why);
    EXPECT_TRUE(store->calls->begin(store.get(), false, why) &&
                store->calls->journal_end(store.get(), end, why) &&
                dm::find_undone(*store, {1, 1, 0}, end.number, wanted, result.refused, why))
        << why.sentence;
    EXPECT_TRUE(result.refused.empty());
    return change(wanted);
  }
};

TEST_F(sequences_of_changes, are_undone_one_by_one) {
  model all;
  all.now = stored();
  const int rounds = on_server() ? 20 : 200;
  int steps = 0;
  for (int round = 0; round < rounds; ++round) {
    std::vector<things> past;  // not undone yet
    for (int i = all.below(4); i >= 0; --i) {
      const things before = all.now;
      all.step();
      if (all.now == before) continue;
      past.push_back(before);
      ++steps;
      ASSERT_EQ(apply(difference(before, all.now), before), "ok");
      ASSERT_EQ(stored(), all.now);
    }
    if (past.empty()) continue;
    const things last = all.now;
    ASSERT_EQ(undo_last(), "ok");
    ASSERT_EQ(stored(), past.back()) << round;
    if (round % 2 == 0) {  // undo of the undo
      ASSERT_EQ(undo_last(), "ok");
      ASSERT_EQ(stored(), last) << round;
    }
    all.now = stored();
    if (round % 10 == 0) {
      ASSERT_EQ(check(), "");
    }
  }
  EXPECT_EQ(check(), "");
  EXPECT_GT(steps, rounds);
}
