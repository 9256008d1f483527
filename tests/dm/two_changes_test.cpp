// One administrator deploys, as the tool does, while another renames, drops or undoes: every order
// in which their operations can reach the dictionary, each judged by a model.
#include "modelled.h"
#include "ways.h"

namespace {

// Who renames, drops or undoes: first looks, then does what it saw.
struct changer {
  way what;
  int seen = 0;  // the clock
  bool may = false, has_looked = false;
  dm::change_purpose purpose{"{}"};
  std::vector<dm::wanted_thing> wanted{};
};

}  // namespace

class two_changes : public modelled {
 protected:
  two_changes() : modelled(1, 13) {}
  using modelled::go_on;

  void look(changer& by) {
    opened from(settings);
    dm::journal_head end;
    EXPECT_TRUE(from.store->calls->journal_end(from.store.get(), end, from.why));
    by.seen = now.clock;
    by.purpose.seen_end = end.number;
    by.may = find_wanted(by.what, *from.store, by.wanted, from.why);
    EXPECT_EQ(from.why.sentence, "");
    EXPECT_EQ(by.may, by.what != UNDO || now.all["f5000"].written == 0);
  }

  void go_on(changer& by) {
    if (!by.has_looked) return by.has_looked = true, look(by);
    if (!by.may) return;
    dm::open_options options;
    options.busy_milliseconds = 20;
    dm::problem why;
    dm::change_result result;
    const dm::store_owner store = dm::open_dictionary(settings, options, why);
    const bool is_done = dm::change_things(*store, settings, 1, by.wanted, by.purpose, result);
    EXPECT_EQ(is_done, holder == nullptr && by.seen == now.clock);
    EXPECT_EQ(result.failure.code == TAV_ERR_BUSY, holder != nullptr) << result.failure.sentence;
    if (is_done) note(written_by(by.what)), ++changed;
  }

  things written_by(way what) const {
    if (what == DROP) return {{"k/s", {"/s", ""}}};
    if (what == UNDO)
      return {{"f5000", a_field("F_S", 5000, "first")}, {"k/s", a_user("/s", "first")}};
    things renamed = {{"f5000", now.all.at("f5000")}, {"k/s", now.all.at("k/s")}};
    for (auto& [key, one] : renamed) one.text.replace(one.text.find("F_S"), 3, "F_R");
    renamed["f5000"].name = "F_R";
    return renamed;
  }

  int changed = 0;
};

TEST_F(two_changes, in_every_order_beside_a_deployment) {
  for (const way what : {RENAME, DROP, UNDO}) {
    in_every_order("aa" + DEPLOYMENT, std::to_string(what), [&](const std::string& turns) {
      changer first{what};
      administrator second(settings);
      for (const char turn : turns) turn == 'a' ? go_on(first) : go_on(second);
    });
  }
  EXPECT_EQ(runs.count(), 3 * 36);
  EXPECT_TRUE(changed > 24 || runs.stride() > 1) << changed;
}
