// A database that is deleted, and made again: what others that are at work meet.
#include "dm/changes/drop_database.h"
#include "bench.h"
#include "dm/open.h"
#include "dm/predefined.h"

class drop_database : public dictionary {
 protected:
  drop_database() { make_second(); }

  void make_second() {
    dm::problem why;
    const dm::store_owner store = dm::open_dictionary(settings, {}, why);
    EXPECT_TRUE(store->calls->begin(store.get(), true, why) && dm::make_database(*store, 2, why) &&
                store->calls->commit(store.get(), why))
        << why.sentence;
  }

  // "ok", or why not.
  std::string drop(uint64_t number, dm::change_purpose purpose = {}) {
    dm::problem why;
    dm::change_result result;
    dm::open_options options;
    options.busy_milliseconds = 50;
    const dm::store_owner store = dm::open_dictionary(settings, options, why);
    const bool is_done = dm::drop_database(*store, settings, number, purpose, result);
    EXPECT_EQ(is_done, result.changes > 0);
    if (is_done) return "ok";
    return result.failure.sentence + (result.refused.empty() ? "" : result.refused[0].why.sentence);
  }
};

TEST_F(drop_database, is_all_or_nothing) {
  client second(settings);
  EXPECT_EQ(second.set_fields("STRING F_A 5000\n", 2), "ok");
  EXPECT_NE(drop(2).find("another process is writing to it"), std::string::npos);
  EXPECT_EQ(second.close(), "ok");
  dm::change_purpose seen;
  seen.seen_end = 3;
  EXPECT_EQ(drop(2, seen).find("The dictionary was changed by deployment 4 of "), 0u);
  seen.seen_end = 4;
  client(settings).set_fields("STRING F_B 5001\n");  // of another database
  dm::change_purpose trial = seen;
  trial.is_trial = true;
  EXPECT_EQ(drop(2, trial), "ok");
  client(settings).set_fields("STRING F_C 5002\n", 2);  // behind that
  EXPECT_EQ(drop(2, seen).find("The dictionary was changed by deployment 6 of "), 0u);
  seen.seen_end = 6;
  const std::string later = content();
  settings.fields_writeable = false;
  EXPECT_NE(drop(2, seen).find("set 'fields_writeable = yes'"), std::string::npos);
  settings.fields_writeable = true;
  EXPECT_EQ(content(), later);
  EXPECT_EQ(drop(2, seen), "ok");
  EXPECT_EQ(query("SELECT count(*) FROM dd_databases"), "1\n");
  EXPECT_EQ(query("SELECT count(*) FROM dd_fields WHERE name = 'F_B'"), "1\n");
  EXPECT_EQ(drop(1), "Database 0.0.0.1 is the only one of the dictionary and cannot be deleted.");
}

TEST_F(drop_database, is_no_other_one_s_when_it_is_made_again) {
  client late(settings);
  client(settings).set_fields("STRING F_A 5000\n", 2);
  late.fields("", 2);
  EXPECT_EQ(drop(2), "ok");
  make_second();
  client(settings).set_fields("STRING F_A 5000 Another.\n", 2);
  EXPECT_EQ(late.set_fields("STRING F_A 5000 Late.\n", 2), "CONFLICT TAV_FLD_FIELD_NAME");
  late.close();
  client unseen(settings), rewritten(settings);
  unseen.fields("", 2), rewritten.fields("", 2);
  EXPECT_EQ(drop(2), "ok");
  make_second();
  EXPECT_EQ(unseen.set_fields("STRING F_A 5000\n", 2), "CONFLICT TAV_FLD_FIELD_NAME");
  unseen.close();
  client(settings).set_fields("STRING F_A 5000 A third.\n", 2);
  EXPECT_EQ(rewritten.set_fields("STRING F_A 5000 Late.\n", 2), "CONFLICT TAV_FLD_FIELD_NAME");
  rewritten.close();
  EXPECT_EQ(drop(1), "ok");
}
