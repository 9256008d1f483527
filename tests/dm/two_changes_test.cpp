// One administrator deploys, as the tool does, while another renames, drops or undoes: every order
// in which their operations can reach the dictionary, each judged by a model.
#include <algorithm>
#include <sstream>

#include "dict/check/check.h"
#include "orders.h"
#include "ways.h"

namespace {

enum step { FETCH, FETCH_CLASSES, TRY_FIELDS, TRY_CLASSES, END_TRIAL, FIELDS, CLASSES, STEPS };

// What both work at: one field, and the class that uses it. Numbers tell when they were written.
struct world {
  std::string field = "F_S", field_text = "old", class_text = "old";
  bool has_class = true, has_own_field = false, has_own_class = false;
  int clock = 0, field_written = 0, class_written = 0;

  std::string text() const {
    std::string all = dm::join({"STRING ", field, " 5000 ", field_text, "\n"});
    if (has_own_field) all += "STRING F_A 5001\n";
    if (has_own_class) all += "{name:/a,sql_table:ta}\n";
    if (!has_class) return all;
    return all + dm::join({"{name:/s,sql_table:ts,descr:", class_text, ",entries:[{name:", field,
                           ",type:5,sql_name:c}]}\n"});
  }
};

// Who renames, drops or undoes: first looks, then does what it saw.
struct changer {
  int seen = 0;  // the clock
  bool may = false, has_looked = false;
  dm::change_purpose purpose{"{}"};
  std::vector<dm::wanted_thing> wanted{};
};

}  // namespace

class two_changes : public orders {
 protected:
  two_changes() : orders(1, 13) {}

  static std::string fields_wanted(const world& seen) {
    const std::string mark = seen.field == "F_S" ? "! " : " ";
    return "STRING F_S 5000" + mark + "new\nSTRING F_A 5001\n";
  }
  void fill() override { deploy_twice(settings); }

  // --- The deployment ---

  std::string carry_out(client& admin, step s) const {
    const std::string own = "/a sql_table=ta\n";
    switch (s) {
      case FETCH:
        return admin.fields(), "ok";
      case FETCH_CLASSES:
        return admin.classes(), "ok";
      case TRY_FIELDS:
      case FIELDS:
        return admin.set_fields(fields_wanted(seen));
      case TRY_CLASSES:
      case CLASSES:
        return admin.set_classes(class_wanted("new") + own, s == TRY_CLASSES ? 128 : 0);
      default:
        return admin.delete_fields("STRING F_A 5001\n");
    }
  }

  bool is_refused(step s) const {
    const bool is_fields = s == TRY_FIELDS || s == FIELDS;
    if (s < TRY_FIELDS || s == END_TRIAL) return false;
    if (now.field != "F_S") return true;  // its number is another's, or it is not there
    return (is_fields ? now.field_written : now.class_written) > seen.clock;
  }

  void commit(step s) {
    ++now.clock;
    if (s == FIELDS) {
      now.field_text = "new", now.has_own_field = true;
    } else {
      now.class_text = "new", now.has_class = now.has_own_class = true;
    }
  }

  void deploy(client& admin, step s) {
    if (stopped && s != END_TRIAL) return;
    if (s == FETCH) seen = now;
    if (s == TRY_FIELDS) holds = true;
    if (s == END_TRIAL) holds = false;
    stopped = stopped || is_refused(s);
    EXPECT_EQ(carry_out(admin, s) != "ok", is_refused(s)) << s;
    if (!stopped && s >= FIELDS) commit(s);
  }

  // --- The change ---

  void look(way what, changer& by) {
    opened from(settings);
    dm::journal_head end;
    EXPECT_TRUE(from.store->calls->journal_end(from.store.get(), end, from.why));
    by.seen = now.clock;
    by.purpose.seen_end = end.number;
    by.may = find_wanted(what, *from.store, by.wanted, from.why);
    EXPECT_EQ(from.why.sentence, "");
    EXPECT_EQ(by.may, what != UNDO || now.field_text == "old");
  }

  void note_change(way what) {
    ++now.clock;
    now.class_written = now.clock;
    if (what == DROP) return (void)(now.has_class = false);
    now.field_written = now.clock;
    if (what == RENAME) now.field = "F_R";
    if (what == UNDO) now.field_text = now.class_text = "first";
  }

  void change(way what, changer& by) {
    if (!by.has_looked) return by.has_looked = true, look(what, by);
    if (!by.may) return;
    dm::open_options options;
    options.busy_milliseconds = 20;
    dm::problem why;
    dm::change_result result;
    const dm::store_owner store = dm::open_dictionary(settings, options, why);
    const bool is_done = dm::change_things(*store, settings, 1, by.wanted, by.purpose, result);
    EXPECT_EQ(is_done, !holds && by.seen == now.clock);
    EXPECT_EQ(result.failure.code == TAV_ERR_BUSY, holds) << result.failure.sentence;
    if (is_done) note_change(what), ++changed;
  }

  void run(const std::string& order, way what) {
    SCOPED_TRACE(order + " " + std::to_string(what));
    start_anew();
    now = seen = {};
    holds = stopped = false;
    {
      client admin(settings, 20);
      changer by;
      int next = FETCH;
      for (const char turn : order) {
        if (turn == 'a') deploy(admin, static_cast<step>(next++));
        if (turn == 'b') change(what, by);
      }
    }
    const std::string told = journal_state(settings, JOURNAL_PRESENT);
    EXPECT_EQ(told.substr(told.find("STRING F_")), now.text());
    std::ostringstream findings;
    opened from(settings);
    dict::checker checked(*from.store, findings);
    EXPECT_TRUE(dict::check_store(checked));
    EXPECT_EQ(findings.str(), "");
  }

  world now, seen;  // the deployment has seen
  bool holds = false, stopped = false;
  int changed = 0;
};

TEST_F(two_changes, in_every_order_beside_a_deployment) {
  for (const way what : {RENAME, DROP, UNDO}) {
    std::string order = std::string(STEPS, 'a') + "bb";
    do {
      if (runs.takes_next()) run(order, what);
    } while (!HasFailure() && std::next_permutation(order.begin(), order.end()));
  }
  EXPECT_EQ(runs.count(), 3 * 36);
  EXPECT_TRUE(changed > 24 || runs.stride() > 1) << changed;
}
