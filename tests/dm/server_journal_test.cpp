// A server that refuses one row of a deployment, whichever: what is stored and what the journal
// tells stay the same thing.
#include "server.h"
#include "told.h"

// Refuses the row that a sequence counts as 0, when it is written or when it is committed.
static const char REFUSALS[] =
    "CREATE SEQUENCE refusals MINVALUE -1000 START 1;"
    "CREATE FUNCTION refuse() RETURNS trigger LANGUAGE plpgsql AS $$ BEGIN"
    " IF nextval('refusals') = 0 THEN RAISE 'refused'; END IF;"
    " RETURN CASE TG_OP WHEN 'DELETE' THEN OLD ELSE NEW END; END $$;"
    "DO $$ DECLARE t TEXT; BEGIN FOREACH t IN ARRAY ARRAY['dd_databases', 'dd_fields',"
    " 'dd_classes', 'dd_tables', 'dd_journal', 'dd_journal_changes'] LOOP"
    " EXECUTE format('CREATE TRIGGER refuse BEFORE INSERT OR UPDATE OR DELETE ON %s"
    "  FOR EACH ROW EXECUTE FUNCTION refuse()', t);"
    " EXECUTE format('CREATE CONSTRAINT TRIGGER refuse_commit AFTER INSERT OR UPDATE OR DELETE"
    "  ON %s DEFERRABLE INITIALLY DEFERRED FOR EACH ROW EXECUTE FUNCTION refuse()', t);"
    " END LOOP; END $$";

namespace {

// A deployment's operations, which end at the first that is refused. Names are its own.
struct deployment {
  std::string mark;
  std::string first = "STRING F_A" + mark + " 5" + mark + "1";
  std::string last = "STRING F_C" + mark + " 5" + mark + "3";
  // What is there before.
  std::string fields = first + "\n" + last + "\nARRAY F_B" + mark + " 5" + mark + "2\n";
  std::string classes =
      "/a" + mark + " sql_table=a" + mark + "\n  ARRAY F_B" + mark + " sql_name=b" + mark + "\n";

  // How many operations went well.
  int carry_out(const dm::settings& settings) const {
    client admin(settings);
    const std::string changed = "/a" + mark + " descr=new\n/d" + mark + " sql_table=d" + mark;
    if (admin.set_fields(first + " New.\nSTRING F_D" + mark + " 5" + mark + "4\n") != "ok")
      return 0;
    if (admin.set_classes(changed + "\n") != "ok") return 1;
    return admin.delete_fields(last + "\n") == "ok" ? 3 : 2;
  }
  // What the journal tells of so many of them.
  std::string told(int64_t number, int count) const {
    const std::string run = std::to_string(number);
    const std::string rows[] = {
        dm::join({run, " ", run, " fields c:F_A", mark, " n:F_D", mark, "\n"}),
        dm::join(
            {std::to_string(number + 1), " ", run, " classes c:/a", mark, " n:/d", mark, "\n"}),
        dm::join({std::to_string(number + 2), " ", run, " delete-fields d:F_C", mark, "\n"})};
    std::string text;
    for (int i = 0; i < count; ++i) text += rows[i];
    return text;
  }
};

}  // namespace

TEST_F(on_a_server, that_refuses_a_row_keeps_change_and_record_or_neither) {
  std::vector<deployment> all;
  std::string fields, classes;
  for (int row = 100; row < 160; ++row) {
    all.push_back({std::to_string(row)});
    fields += all.back().fields;
    classes += all.back().classes;
  }
  {
    client admin(settings);
    ASSERT_EQ(admin.set_fields(fields), "ok");
    ASSERT_EQ(admin.set_classes(classes), "ok");
  }
  query(REFUSALS);
  std::string before = journal_state(settings, JOURNAL_PRESENT);
  int64_t number = 5;  // of the next record
  int kept[4] = {};
  for (size_t row = 1; kept[3] == 0; ++row) {
    SCOPED_TRACE(row);
    ASSERT_LT(row, all.size());
    query("SELECT setval('refusals', -" + std::to_string(row) + ")");
    const int done = all[row].carry_out(settings);
    const std::string told = journal_told(settings, number);
    // The first is not durable before the second.
    const int count = done == 1 && told.empty() ? 0 : done;
    EXPECT_EQ(told, all[row].told(number, count));
    EXPECT_EQ(journal_state(settings, number - 1), before);
    const std::string after = journal_state(settings, JOURNAL_PRESENT);
    EXPECT_EQ(after != before, count > 0);
    before = after;
    number += count;
    ++kept[count];
  }
  EXPECT_GT(kept[0], 5);
  EXPECT_GT(kept[1], 5);
  EXPECT_GT(kept[2], 3);
}
