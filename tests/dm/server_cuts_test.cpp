// A row that the server refuses, a line to it that is cut, or a process that is killed, at each row
// or message of a change that the operations cannot make, and of a plan's deployment: all of it is
// done, or nothing, and what is told is true.
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>
#include <sstream>

#include "dict/check/check.h"
#include "dict/plan/deploy.h"
#include "dm/changes/drop_database.h"
#include "dm/open.h"
#include "dm/predefined.h"
#include "dying.h"
#include "orders.h"
#include "server.h"
#include "ways.h"

namespace {

// Carries a change out; false with the reason.
using change_call = bool (*)(const dm::settings& settings, dm::problem& why);

struct fate {
  const char* title;
  void (*meet)(int message, bool delivered);
  bool delivered;
  bool is_deadly;
};

}  // namespace

static constexpr fate FATES[] = {{"cut before", cut_line_at, false, false},
                                 {"cut behind", cut_line_at, true, false},
                                 {"killed before", die_at, false, true},
                                 {"killed behind", die_at, true, true}};

template <way which>
static bool change(const dm::settings& settings, dm::problem& why) {
  std::vector<dm::wanted_thing> wanted;
  dm::change_result result;
  const dm::store_owner store = dm::open_dictionary(settings, {}, why);
  if (store == nullptr || !store->calls->begin(store.get(), false, why)) return false;
  if (!find_wanted(which, *store, wanted, why)) return false;
  const bool is_done = dm::change_things(*store, settings, 1, wanted, {"{}"}, result);
  why = result.failure;
  return is_done;
}

static bool drop_second(const dm::settings& settings, dm::problem& why) {
  dm::change_result result;
  const dm::store_owner store = dm::open_dictionary(settings, {}, why);
  const bool is_done = store != nullptr && dm::drop_database(*store, settings, 2, {}, result);
  if (store != nullptr) why = result.failure;
  return is_done;
}

static std::string plan_file;
static constexpr char PLANNED[] =
    "STRING F_N { ID = 5001; }\nSTORABLE CLASS /n { STRING F_N { } }\n"
    "STORABLE CLASS /n IMPLEMENTATION TESSEL7 { SQL_TABLE = \"tn\";"
    " STRING F_N { SQL_COLUMN = \"c\"; } }\n";

static void judge(dict::snapshot& on, const std::string& text, std::vector<lint::source>& sources,
                  dict::judged& files) {
  sources.push_back({plan_file, syntax::read(text)});
  dict::judge(on, sources, files);
}

static bool open(const dm::settings& settings, dict::snapshot& on, dm::problem& why) {
  on.session.settings = settings;
  on.session.store = dm::open_dictionary(settings, {}, why);
  return on.session.store != nullptr && dict::begin_snapshot(on, why) &&
         dict::choose_database(1, on, why) && dict::fetch_held(on, why);
}

static void make_plan(const dm::settings& settings) {
  dict::snapshot on;
  dict::plan made;
  dict::judged files;
  dm::problem why;
  std::vector<lint::source> sources;
  EXPECT_TRUE(open(settings, on, why)) << why.sentence;
  judge(on, PLANNED, sources, files);
  EXPECT_TRUE(dict::make_plan(on, sources, files, made, why)) << why.sentence;
  std::ofstream(plan_file) << dict::file_of(made);
}

static bool apply(const dm::settings& settings, dm::problem& why) {
  dict::snapshot on;
  dict::plan made;
  dict::judged files;
  dict::standing now;
  std::vector<lint::source> sources;
  if (!dict::read_plan(plan_file, made, why) || !open(settings, on, why) ||
      !dict::is_of(made, on, why) ||
      !dict::find_standing(*on.session.store, on.database, made, now, why))
    return false;
  judge(on, made.definitions, sources, files);
  if (dm::failed(files.refusal)) return why = files.refusal, false;
  return dict::deploy_plan(on, made, files, now, why) && dict::can_deploy(now);
}

static constexpr struct {
  const char* title;
  change_call carry_out;
  int rows;  // that are written or deleted at least
} CHANGES[] = {{"apply", apply, 7},
               {"rename", change<RENAME>, 6},
               {"drop", change<DROP>, 5},
               {"undo", change<UNDO>, 5},
               {"drop-database", drop_second, 4}};

// In a process of its own.
static void run_deadly(change_call carry_out, const dm::settings& settings, int message,
                       bool delivered) {
  const pid_t child = fork();
  if (child == 0) {
    dm::problem why;
    die_at(message, delivered);
    carry_out(settings, why);
    _exit(1);
  }
  int status = 0;
  waitpid(child, &status, 0);
  EXPECT_TRUE(WIFSIGNALED(status)) << status;
}

class on_a_server_cut : public on_a_server {
 protected:
  on_a_server_cut() { plan_file = folder + "/a.plan"; }

  void begin_anew() {
    dm::problem why;
    query("DROP SCHEMA " + schema + " CASCADE; CREATE SCHEMA " + schema);
    EXPECT_TRUE(make(settings, why)) << why.sentence;
    deploy_twice(settings);
    {
      opened to(settings, true);
      EXPECT_TRUE(dm::make_database(*to.store, 2, to.why) &&
                  to.store->calls->commit(to.store.get(), to.why))
          << to.why.sentence;
    }
    EXPECT_EQ(client(settings).set_fields("STRING F_B 5001\n", 2), "ok");
    make_plan(settings);
    before = content();
  }

  // The messages of a run that nothing happens to, and what it leaves.
  int run_whole(change_call carry_out) {
    dm::problem why;
    begin_anew();
    messages_sent = 0;
    EXPECT_TRUE(carry_out(settings, why)) << why.sentence;
    const int messages = messages_sent;
    after = content();
    EXPECT_NE(after, before);
    begin_anew();
    return messages;
  }

  // No lock is left once the server knows, and the check of the dictionary finds nothing.
  void expect_sound() const {
    std::ostringstream findings;
    opened alone(settings, true, {5000});
    dict::checker checked(*alone.store, findings);
    EXPECT_TRUE(dict::check_store(checked));
    EXPECT_EQ(findings.str(), "");
  }

  void run(change_call carry_out, const fate& meets, int message) {
    dm::problem why;
    bool is_done = false;
    if (meets.is_deadly) {
      run_deadly(carry_out, settings, message, meets.delivered);
    } else {
      cut_line_at(message, meets.delivered);
      is_done = carry_out(settings, why);
      EXPECT_TRUE(mend_line());
    }
    expect_sound();
    const std::string found = content();
    const bool says_unknown = why.sentence.find("is UNKNOWN") != std::string::npos;
    unknown += says_unknown ? 1 : 0;
    EXPECT_TRUE(found == after || found == before);
    EXPECT_TRUE(meets.is_deadly || says_unknown || is_done == (found == after)) << why.sentence;
    if (found != before) begin_anew();
  }

  std::string before, after;
  int unknown = 0;
};

TEST_F(on_a_server_cut, a_change_is_all_done_or_not_at_all_as_it_tells) {
  drawn_runs runs(23);
  for (const auto& each : CHANGES) {
    const int messages = run_whole(each.carry_out);
    for (const fate& meets : FATES) {
      for (int message = 1; message <= messages; ++message) {
        const bool is_near_commit = message + 1 >= messages;
        if (!runs.takes_next() && !is_near_commit) continue;
        SCOPED_TRACE(dm::join({each.title, ", ", meets.title, " message ", std::to_string(message),
                               " of ", std::to_string(messages)}));
        run(each.carry_out, meets, message);
      }
    }
  }
  EXPECT_GT(unknown, 4);
}

TEST_F(on_a_server_cut, a_change_of_which_a_row_is_refused_is_not_done_at_all) {
  for (const auto& each : CHANGES) {
    SCOPED_TRACE(each.title);
    begin_anew();
    query("DELETE FROM dd_fields WHERE database = 2 AND number < 5001");  // fewer take less time
    query(ROW_REFUSALS);
    before = content();
    int row = 1;
    const auto is_refused = [&] {
      dm::problem why;
      query("SELECT setval('refusals', -" + std::to_string(row) + ")");
      const bool is_done = each.carry_out(settings, why);
      EXPECT_EQ(content() != before, is_done) << row;
      return !is_done;
    };
    while (row < 100 && is_refused()) ++row;
    EXPECT_GT(row, 2 * each.rows);  // each when it is written, and when it is committed
    EXPECT_LT(row, 100);
  }
}
