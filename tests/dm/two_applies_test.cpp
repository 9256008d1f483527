// One administrator makes a plan and applies it, while another deploys as the tool does, or applies
// a plan, too: orders in which their steps can reach the dictionary, each judged by a model. A plan
// is stale exactly where something that it touches or depends on was written since it was made.
#include <fstream>
#include <set>

#include "dict/plan/deploy.h"
#include "modelled.h"

namespace {

struct plan_row {
  const char* what;
  std::string definitions;
  things results;                  // by key, as all things
  std::vector<std::string> needs;  // keys of what it depends on besides
};

enum class plan_step { MAKE, LOOK, COMMIT };

// How a plan stands.
enum class stands { FIT, DONE, STALE };

}  // namespace

static std::string definition(const std::string& name, const std::string& table,
                              const std::string& descr = "") {
  const bool has_entry = !descr.empty();
  const std::string about = has_entry ? " DESCR = \"" + descr + "\"; STRING F_S { }" : "";
  return dm::join({"STORABLE CLASS ", name, " {", about, " }\nSTORABLE CLASS ", name,
                   " IMPLEMENTATION TESSEL7 { SQL_TABLE = \"", table, "\";",
                   has_entry ? " STRING F_S { SQL_COLUMN = \"c\"; }" : "", " }\n"});
}

static const std::vector<plan_row> PLANS = {
    {"the class", definition("/s", "ts", "planned"), {{"k/s", a_user("/s", "planned")}}, {"f5000"}},
    {"its field",
     "STRING F_S { ID = 5000; DESCR = \"planned\"; }\n",
     {{"f5000", a_field("F_S", 5000, "planned")}},
     {}},
    {"another user of the field",
     definition("/p", "tp", "planned"),
     {{"k/p", a_user("/p", "planned")}, {"ttp", {"/p", ""}}},
     {"f5000"}},
    {"a number and a table that others want",
     "STRING F_N { ID = 5001; }\n" + definition("/n", "ta"),
     {{"f5001", a_field("F_N", 5001)},
      {"k/n", {"/n", "{name:/n,sql_table:ta}\n"}},
      {"tta", {"/n", ""}}},
     {}},
    {"things elsewhere",
     "STRING F_E { ID = 5002; }\n" + definition("/e", "te"),
     {{"f5002", a_field("F_E", 5002)}, {"k/e", a_class("/e")}, {"tte", {"/e", ""}}},
     {}},
};

static bool is_same(const thing& a, const thing& b) {
  return a.name == b.name && a.text == b.text;
}

namespace {

// Who makes a plan and applies it.
struct planner {
  const plan_row& row;
  std::string file;
  plan_step next = plan_step::MAKE;
  bool is_over = false;  // refused, done or stale
  int made_at = 0;
  dict::plan made{};
  dict::snapshot on{};
  std::vector<lint::source> sources{};
  dict::judged files{};
};

}  // namespace

class two_applies : public modelled {
 protected:
  two_applies() : modelled(7, 61) {}
  using modelled::go_on;

  // Whether something that the plan wants to be new is somebody else's.
  bool is_taken(const plan_row& row) const {
    return std::ranges::any_of(row.results, [&](const auto& each) {
      const auto found = now.all.find(each.first);
      return found != now.all.end() && found->second.name != each.second.name;
    });
  }

  // Names of what is not as the plan saw it.
  std::set<std::string> changed_since(const planner& by) const {
    std::set<std::string> keys(by.row.needs.begin(), by.row.needs.end()), names;
    for (const auto& [key, one] : by.row.results) keys.insert(key);
    for (const std::string& key : keys) {
      const auto found = now.all.find(key);
      if (found != now.all.end() && found->second.written > by.made_at)
        names.insert(found->second.name);
    }
    return names;
  }

  stands standing_of(const planner& by) const {
    const bool is_done = std::ranges::all_of(by.row.results, [&](const auto& each) {
      const auto found = now.all.find(each.first);
      return found != now.all.end() && is_same(found->second, each.second);
    });
    if (is_done || by.made.results.fields.size() + by.made.results.classes.size() == 0)
      return stands::DONE;
    return changed_since(by).empty() ? stands::FIT : stands::STALE;
  }

  void open(planner& by, dm::problem& why) const {
    dm::open_options options;
    options.busy_milliseconds = 20;
    by.on.session.settings = settings;
    by.on.session.store = dm::open_dictionary(settings, options, why);
    EXPECT_TRUE(dict::begin_snapshot(by.on, why) && dict::choose_database(1, by.on, why) &&
                dict::fetch_held(by.on, why))
        << why.sentence;
  }

  void judge(planner& by, const std::string& text) const {
    by.sources.clear();
    by.sources.push_back({by.file, syntax::read(text)});
    by.files = {};
    dict::judge(by.on, by.sources, by.files);
  }

  void make_plan(planner& by) const {
    dm::problem why;
    open(by, why);
    judge(by, by.row.definitions);
    by.made_at = now.clock;
    by.is_over = is_taken(by.row);
    EXPECT_EQ(dict::is_refused(by.files), by.is_over);
    if (!by.is_over) {
      EXPECT_TRUE(dict::make_plan(by.on, by.sources, by.files, by.made, why)) << why.sentence;
      std::ofstream(by.file) << dict::file_of(by.made);
    }
    by.on = {};
  }

  void expect_standing(planner& by, const dict::standing& found) const {
    const stands expected = standing_of(by);
    std::set<std::string> names;
    for (const auto& each : found.stale) names.insert(each.name);
    EXPECT_EQ(found.is_done, expected == stands::DONE);
    EXPECT_EQ(names, expected == stands::STALE ? changed_since(by) : std::set<std::string>());
    by.is_over = expected != stands::FIT;
  }

  void look(planner& by) const {
    dm::problem why;
    dict::standing found;
    by.made = {};
    EXPECT_TRUE(dict::read_plan(by.file, by.made, why)) << why.sentence;
    open(by, why);
    EXPECT_TRUE(dict::is_of(by.made, by.on, why) &&
                dict::find_standing(*by.on.session.store, by.on.database, by.made, found, why))
        << why.sentence;
    expect_standing(by, found);
    if (by.is_over) return;
    judge(by, by.made.definitions);
    EXPECT_TRUE(dict::results_fit(by.made, by.files.result, why)) << why.sentence;
  }

  void commit(planner& by) {
    dm::problem why;
    dict::standing found;
    const bool is_deployed = dict::deploy_plan(by.on, by.made, by.files, found, why);
    by.on = {};
    EXPECT_EQ(is_deployed, holder == nullptr);
    EXPECT_EQ(why.code, holder == nullptr ? TAV_ERR_NONE : TAV_ERR_BUSY) << why.sentence;
    if (!is_deployed) return;
    expect_standing(by, found);
    if (!by.is_over) note(by.row.results), ++applied;
  }

  void go_on(planner& by) {
    SCOPED_TRACE(dm::join({by.row.what, ", step ", std::to_string(static_cast<int>(by.next))}));
    if (by.is_over) return;
    if (by.next == plan_step::MAKE) make_plan(by);
    if (by.next == plan_step::LOOK) look(by);
    if (by.next == plan_step::COMMIT) commit(by);
    by.next = static_cast<plan_step>(static_cast<int>(by.next) + 1);
  }

  int applied = 0;
};

TEST_F(two_applies, a_plan_beside_a_deployment) {
  for (const plan_row& row : PLANS) {
    in_every_order("aaa" + DEPLOYMENT, row.what, [&](const std::string& turns) {
      planner first{row, folder + "/a.plan"};
      administrator second(settings);
      for (const char turn : turns) turn == 'a' ? go_on(first) : go_on(second);
    });
  }
  EXPECT_EQ(runs.count(), 5 * 120);
  EXPECT_GT(applied, 0);
}

TEST_F(two_applies, a_plan_beside_a_plan) {
  for (size_t pair = 0; pair < PLANS.size() * PLANS.size(); ++pair) {
    in_every_order("aaabbb", "", [&](const std::string& turns) {
      planner first{PLANS[pair / PLANS.size()], folder + "/a.plan"};
      planner second{PLANS[pair % PLANS.size()], folder + "/b.plan"};
      for (const char turn : turns) turn == 'a' ? go_on(first) : go_on(second);
    });
  }
  EXPECT_EQ(runs.count(), 25 * 20);
  EXPECT_GT(applied, 0);
}
