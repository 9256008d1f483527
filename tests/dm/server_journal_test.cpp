// What a server that refuses one row of a deployment, or is lost in an upgrade or a prune, keeps of
// the journal: all of it or nothing.
#include "dm/journal/begin.h"
#include "dm/open.h"
#include "server.h"
#include "told.h"

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
  query(ROW_REFUSALS);
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

// --- Upgrade and prune -----------------------------------------------------------------------

static bool forget_all_before(dm::store& store, dm::problem& why) {
  dm::journal_head end;
  dm::journal_draft draft;
  dm::journal_run run;
  if (!store.calls->journal_end(&store, end, why)) return false;
  const std::string next = std::to_string(end.number + 1);
  const std::string detail = "{\"before\":" + next + ",\"hash\":\"" + end.hash + "\"}";
  return dm::add_event(store, draft, run, {dm::journal_kind::PRUNE, 0, detail}, why) &&
         store.calls->forget_records(&store, end.number + 1, why);
}

namespace {

struct whole_work {
  bool (*carry_out)(dm::store&, dm::problem&);
  std::string prepare;  // SQL that brings about the state before
  std::string state;    // SQL that tells of it, with how many guards there are
  std::string before, after;
};

}  // namespace

static constexpr char GUARDS[] =
    " || (SELECT count(*)::TEXT FROM pg_trigger WHERE tgenabled = 'O' AND NOT tgisinternal AND"
    " tgrelid IN (SELECT c.oid FROM pg_class c JOIN pg_namespace n ON n.oid = relnamespace"
    " WHERE nspname = current_schema()))";

static const whole_work WORKS[] = {
    {forget_all_before,
     "INSERT INTO dd_journal SELECT max(number) + 1, 1, 0, '', '', '', '', '', '', session_user,"
     " '', '', '', '', '', '', '', '', '' FROM dd_journal HAVING count(*) = 1",
     dm::join({"SELECT CASE WHEN count(*) > 1 THEN 'long' ELSE min(kind) END", GUARDS,
               " FROM dd_journal"}),
     "long4\n", "prune4\n"},
    {dm::upgrade_dictionary,
     "DROP TABLE IF EXISTS dd_identity, dd_journal, dd_journal_changes;"
     "DROP FUNCTION IF EXISTS dd_journal_keep, dd_journal_role; UPDATE dd_schema SET version = 1",
     dm::join({"SELECT version", GUARDS, " FROM dd_schema"}), "10\n", "24\n"},
};

TEST_F(on_a_server, a_line_cut_in_a_prune_or_an_upgrade_leaves_all_or_nothing) {
  dm::open_options options;
  options.may_upgrade = true;
  // Gives whether the work took that many messages.
  const auto cut = [&](const whole_work& work, int message, bool delivered) {
    SCOPED_TRACE(work.before + std::to_string(message));
    dm::problem why;
    EXPECT_EQ(query(work.prepare + ";" + work.state), work.before);
    cut_line_at(message, delivered);
    dm::store_owner store = dm::open_dictionary(settings, options, why);
    const bool is_done = store != nullptr && store->calls->begin(store.get(), true, why) &&
                         work.carry_out(*store, why) && store->calls->commit(store.get(), why);
    store.reset();
    const bool is_cut = mend_line();
    opened(settings, true, options);  // waits until the server has ended what was begun
    const std::string state = query(work.state);
    EXPECT_TRUE(state == work.after || (state == work.before && !is_done)) << state;
    EXPECT_TRUE(is_cut || is_done) << why.sentence;
    return is_cut;
  };
  for (const whole_work& work : WORKS) {
    for (const bool delivered : {false, true}) {
      int message = 1;
      while (cut(work, message, delivered)) ++message;
      EXPECT_GT(message, 10);
    }
  }
}
