// What the journal records of what sessions commit, and going back by it.
#include <algorithm>
#include <random>
#include <sstream>
#include <vector>

#include "dict/check/check.h"
#include "dm/journal/begin.h"
#include "told.h"

class journal : public dictionary {
 protected:
  std::string told_from(int64_t number) const { return journal_told(settings, number); }
  std::string state_after(int64_t number) const { return journal_state(settings, number); }
  std::string present() const { return journal_state(settings, JOURNAL_PRESENT); }
  std::string checked() const {
    opened from(settings);
    std::ostringstream told;
    dict::checker check(*from.store, told);
    EXPECT_TRUE(dict::check_store(check)) << check.why.sentence;
    return told.str();
  }
  int64_t last() const {
    opened from(settings);
    dm::journal_head end;
    EXPECT_TRUE(from.store->calls->journal_end(from.store.get(), end, from.why));
    return end.number;
  }
};

TEST_F(journal, has_a_record_for_each_transaction_that_changes_something) {
  {
    client admin(settings);
    admin.set_fields("STRING F_A 5000 Old.\nARRAY F_B 5001\nSTRING F_C 5002\n");
    admin.set_classes("/a sql_table=t\n  STRING F_A sql_name=c\n/a descr=1\n/a descr=2\n/b\n");
    admin.set_classes("/a sql_table=t\n  STRING F_A sql_name=c\n/a descr=1\n/a descr=2\n");
    admin.set_classes("/a descr=1\n/a descr=2\n");  // as it is
    admin.set_fields("STRING f_a 5000 New.\nSTRING F_C 5002\nSTRING F_A 5000 Newer.\n");
    admin.delete_fields("STRING F_C 5002\nSTRING F_C 5002\n");
  }
  EXPECT_EQ(client(settings).set_fields("STRING F_A 5000 Newer.\n"), "ok");  // as it is
  client(settings).set_classes("/a descr=3\n", 128);
  client other(settings);
  other.set_fields("STRING F_D 5003\n");
  EXPECT_EQ(other.set_classes("/d\n", 128), "MISSING_FIELD TAV_FLD_SQL_TABLE");
  EXPECT_EQ(other.delete_fields("STRING F_D 5003\n"), "ok");
  EXPECT_EQ(told_from(3),
            "3 3 fields n:F_A n:F_B n:F_C\n4 3 classes n:/a\n5 3 fields c:F_A\n"
            "6 3 delete-fields d:F_C\n");
  EXPECT_EQ(checked(), "");
  const std::string unguarded =
      on_server() ? "ALTER TABLE dd_journal DISABLE TRIGGER ALL" : "DROP TRIGGER dd_journal_update";
  query(unguarded + "; UPDATE dd_journal SET deployment = 4 WHERE number = 4");
  EXPECT_NE(checked().find("Record 4 of the journal was altered.\n"), std::string::npos);
}

TEST_F(journal, leads_back_to_every_state_before) {
  std::mt19937 random(17);
  const auto below = [&](unsigned count) { return static_cast<int>(random() % count); };
  std::vector<std::string> states{present()};
  const int64_t first = last();
  while (states.size() < (on_server() ? 20u : 60u)) {
    client admin(settings);
    const std::string number = std::to_string(5000 + below(9));
    const std::string name = std::to_string(below(4));
    const std::string about = " D\xc3\xa4" + std::to_string(below(3)) + "\xc3\xa4.";
    if (below(3) == 0) {
      admin.delete_fields("STRING F_" + number + " " + number + "\n");
    } else if (below(2) == 0) {
      admin.set_fields("STRING F_" + number + " " + number + about + "\n");
    } else {
      admin.set_classes("/c" + name + " sql_table=t" + name + " descr=\xc3" +
                        std::string(1, static_cast<char>(0xa4 + below(3))) + "\n  STRING F_" +
                        number + " sql_name=n descr=" + std::string(9, '"') + "\n");
    }
    admin.close();
    if (present() != states.back()) states.push_back(present());
    ASSERT_EQ(last(), first + static_cast<int64_t>(states.size()) - 1);
  }
  for (size_t k = 0; k < states.size(); ++k) {
    EXPECT_EQ(state_after(first + static_cast<int64_t>(k)), states[k]) << k;
  }
  EXPECT_EQ(state_after(0), "");
}

TEST_F(journal, packs_many_changes_into_few_parts) {
  std::string fields;
  for (int i = 0; i < 3000; ++i) {
    fields += "STRING F_" + std::to_string(i) + " " + std::to_string(5000 + i) + " D.\n";
  }
  const std::string before = present();
  EXPECT_EQ(client(settings).set_fields(fields), "ok");
  const std::string parts =
      query("SELECT count(*), max(part) FROM dd_journal_changes WHERE record = 3");
  EXPECT_EQ(parts, "4|3\n");  // 3,000 times 83 bytes in parts of 64 KB
  EXPECT_EQ(client(settings).set_classes("/a sql_table=t\n/b sql_table=u\n"), "ok");
  EXPECT_EQ(state_after(2), before);
}

TEST(packed_changes, with_another_letter_at_their_start_are_none) {
  const std::string_view state = "5000 5 0 F_A";
  for (size_t at = 0; at < 3; ++at) {
    std::string packed;
    dm::journal_change change{};
    dm::pack_change(packed, dm::change_of::FIELD, "F_A", {nullptr, &state});
    packed[at] = 'x';
    std::string_view rest = packed;
    EXPECT_FALSE(dm::unpack_change(rest, change)) << packed;
  }
}

TEST_F(journal, begins_with_what_an_older_dictionary_holds) {
  client(settings).set_fields("STRING F_A 5000\n");
  const std::string before = present();
  query("DROP TABLE dd_identity; DROP TABLE dd_journal; DROP TABLE dd_journal_changes");
  query(on_server() ? "DROP FUNCTION dd_journal_keep; DROP FUNCTION dd_journal_role;"
                      " UPDATE dd_schema SET version = 1"
                    : "PRAGMA user_version = 1");
  EXPECT_EQ(client(settings).fields("F_A\n"), "STRING F_A 5000\n");
  client admin(settings);
  admin.set_fields("STRING F_B 5001\n");
  EXPECT_EQ(admin.close(), "WRITE_REFUSED");
  dm::open_options options;
  options.may_upgrade = true;
  for (const bool is_kept : {false, true}) {
    opened to(settings, true, options);
    EXPECT_TRUE(dm::upgrade_dictionary(*to.store, to.why)) << to.why.sentence;
    EXPECT_TRUE(!is_kept || to.store->calls->commit(to.store.get(), to.why)) << to.why.sentence;
  }
  EXPECT_EQ(client(settings).set_fields("STRING F_B 5001\n"), "ok");
  EXPECT_EQ(state_after(2), before);
  EXPECT_EQ(told_from(3), "3 3 fields n:F_B\n");
  opened from(settings);
  dm::past past;
  EXPECT_FALSE(dm::look_back(*from.store, {1, 1, 0}, 1, past, from.why));
  EXPECT_EQ(from.why.code, TAV_ERR_NOT_FOUND);
  EXPECT_FALSE(from.why.is_damage);
}

TEST_F(journal, forgets_the_way_and_stays_guarded_and_sound) {
  client(settings).set_fields("STRING F_A 5000\n");
  client(settings).set_fields("STRING F_A 5000 Described.\n");
  {
    opened to(settings, true);
    std::string hash;
    const auto note = [&](const dm::journal_record& record) { return hash = record.hash, true; };
    EXPECT_TRUE(dm::walk_records(*to.store, {3, 3}, note, to.why));
    dm::journal_draft draft;
    dm::journal_run run;
    const std::string detail = "{\"before\":4,\"hash\":\"" + hash + "\"}";
    EXPECT_TRUE(to.store->calls->forget_records(to.store.get(), 4, to.why)) << to.why.sentence;
    EXPECT_TRUE(dm::add_event(*to.store, draft, run, {dm::journal_kind::PRUNE, 0, detail}, to.why));
    EXPECT_TRUE(to.store->calls->commit(to.store.get(), to.why)) << to.why.sentence;
  }
  EXPECT_EQ(told_from(0), "4 4 fields c:F_A\n5 5 prune\n");
  EXPECT_EQ(checked(), "");
  opened from(settings);
  int64_t bytes = 0;
  EXPECT_TRUE(from.store->calls->size(from.store.get(), bytes, from.why));
  EXPECT_GT(bytes, 0);
  dm::past past;
  EXPECT_FALSE(dm::look_back(*from.store, {1, 1, 0}, 2, past, from.why));
  EXPECT_EQ(from.why.code, TAV_ERR_NOT_FOUND);
}
