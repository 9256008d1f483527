// Two administrators deploy overlapping fields and classes: every order in which their operations
// can reach the dictionary, each judged by a model of what one writer at a time allows; and what
// the journal tells of it, from which every state between must come back.
#include <algorithm>
#include <chrono>
#include <map>
#include <thread>

#include "orders.h"

namespace {

enum step { FETCH_FIELDS, FETCH_CLASSES, TRY_FIELDS, TRY_CLASSES, END_TRIAL, FIELDS, CLASSES };

// What is committed of fields and of classes: the text of each item, and when it was written.
enum kind { FIELD, CLASS };
struct item {
  std::string text;
  int written;
};
struct world {
  std::map<std::string, item> items[2];
  int clock = 0;
};

struct admin {
  std::string name;
  std::vector<step> steps;
  client session;
  world seen = {};  // when it fetched
  size_t next = 0;
  bool refused = false;

  admin(std::string who, std::vector<step> plan, const dm::settings& settings)
      : name(std::move(who)), steps(std::move(plan)), session(settings, 0) {}
};

// What somebody committed: in the words of the journal, and the world after it.
struct commit {
  std::string who, told;
  world after;
};

struct model {
  world now;
  std::vector<commit> commits = {};
  const admin* writer = nullptr;  // who has the dictionary for itself
};

// One item that an administrator deploys.
struct wanted {
  std::string key, name, request, stored;
};

}  // namespace

// Both change the shared one and add that of both, as far as each knows; each adds its own.
static std::vector<wanted> wanted_by(const admin& who, kind which) {
  std::vector<wanted> all;
  for (const std::string& name : {std::string("shared"), std::string("both"), who.name}) {
    if (which == FIELD) {
      const std::string number = name == "shared" ? "5000"
                                 : name == "both" ? "5001"
                                                  : "500" + std::to_string(who.name[0] - 'a' + 2);
      const std::string mark = who.seen.items[FIELD].count(number) != 0 ? "! " : " ";
      const std::string field = "STRING F_" + name + " " + number;
      all.push_back(
          {number, "F_" + name, field + mark + who.name + "\n", field + " " + who.name + "\n"});
    } else {
      const std::string key = "/" + name;
      all.push_back({key, key, key + " sql_table=t" + name + " descr=" + who.name + "\n",
                     "{name:" + key + ",sql_table:t" + name + ",descr:" + who.name + "}\n"});
    }
  }
  return all;
}

static std::string request(const admin& who, kind which, bool with_marked = true) {
  std::string text;
  for (const wanted& w : wanted_by(who, which)) {
    if (with_marked || who.seen.items[which].count(w.key) == 0) text += w.request;
  }
  return text;
}

static std::string text_of(const world& shown, kind which) {
  std::string text;
  for (const auto& [key, value] : shown.items[which]) text += value.text;
  return text;
}

// Whether it would write over what another has written since it fetched.
static bool conflicts(const model& m, const admin& who, kind which) {
  const auto mine = wanted_by(who, which);
  return std::any_of(mine.begin(), mine.end(), [&](const wanted& w) {
    const auto found = m.now.items[which].find(w.key);
    return found != m.now.items[which].end() && found->second.written > who.seen.clock;
  });
}

static void commit_to(model& m, const admin& who, kind which) {
  std::string told = which == FIELD ? "fields" : "classes";
  ++m.now.clock;
  for (const wanted& w : wanted_by(who, which)) {
    const bool is_new = m.now.items[which].count(w.key) == 0;
    told += dm::join({is_new ? " n:" : " c:", w.name});
    m.now.items[which][w.key] = {w.stored, m.now.clock};
  }
  m.commits.push_back({who.name, told, m.now});
}

// What the step must report, with what it does to the model.
static std::string expected(model& m, const admin& who, step s, bool tried) {
  const bool is_trial = s == TRY_FIELDS || s == TRY_CLASSES;
  const kind which = s == TRY_FIELDS || s == FIELDS || s == END_TRIAL ? FIELD : CLASS;
  static const std::string conflict[] = {"CONFLICT TAV_FLD_FIELD_NAME", "CONFLICT TAV_FLD_NAME"};
  if (s == FETCH_FIELDS) return text_of(m.now, FIELD);
  if (s == FETCH_CLASSES) return text_of(who.seen, CLASS);
  if (s == END_TRIAL) {
    if (m.writer == &who) m.writer = nullptr;
    // Without the trial that it ends it deletes in earnest, but nothing of another.
    return !tried && conflicts(m, who, FIELD) ? conflict[FIELD] : "ok";
  }
  if (m.writer != nullptr && m.writer != &who) return "BUSY";
  if (is_trial && tried) m.writer = &who;
  if (conflicts(m, who, which)) return conflict[which];
  if (is_trial) return "ok";
  commit_to(m, who, which);
  return "ok";
}

// Records that there are before: two of a new dictionary, two of what both share.
static constexpr int64_t BASE_RECORDS = 4;

// The records of an administrator are one deployment.
static std::string journal_of(const model& m) {
  std::string told;
  std::map<std::string, std::string> deployments;  // the first record's number
  int64_t number = BASE_RECORDS;
  for (const commit& each : m.commits) {
    const std::string own = std::to_string(++number);
    const std::string deployment = deployments.try_emplace(each.who, own).first->second;
    told += dm::join({own, " ", deployment, " ", each.told, "\n"});
  }
  return told;
}

// --- The runs ---------------------------------------------------------------------------------

// Without the predefined fields, which come first.
static std::string own_part(const std::string& text) {
  const size_t first = text.find("STRING F_");
  return first == std::string::npos ? text : text.substr(first);
}

static std::string carry_out(admin& who, step s) {
  switch (s) {
    case FETCH_FIELDS:
      return own_part(who.session.fields());
    case FETCH_CLASSES:
      return who.session.classes();
    case END_TRIAL:
      return who.session.delete_fields(request(who, FIELD, false));
    case TRY_FIELDS:
    case FIELDS:
      return who.session.set_fields(request(who, FIELD));
    default:
      return who.session.set_classes(request(who, CLASS), s == TRY_CLASSES ? 128 : 0);
  }
}

class two_sessions : public orders {
 protected:
  two_sessions() : orders(1, 41) {}

  // One administrator's next operation; a run stops, as the tool's does, at the end of a trial in
  // which something was refused, and at a commit that was.
  void go_on(admin& who, model& m) {
    const step s = who.steps[who.next++];
    const bool tried = who.steps.size() == 7;
    if (who.refused && s >= FIELDS) return;
    if (s == FETCH_FIELDS) who.seen = m.now;
    const std::string result = carry_out(who, s);
    EXPECT_EQ(result, expected(m, who, s, tried)) << who.name << " step " << s;
    if (s >= TRY_FIELDS && result != "ok") who.refused = true;
  }

  // The journal's order is that of the commits, and it leads back to the world after each.
  void expect_told(const world& first, const model& m) {
    int64_t number = BASE_RECORDS;
    EXPECT_EQ(journal_told(settings, number + 1), journal_of(m));
    const auto expect_back = [&](const world& then) {
      EXPECT_EQ(own_part(journal_state(settings, number)),
                text_of(then, FIELD) + text_of(then, CLASS));
      ++number;
    };
    expect_back(first);
    for (const commit& each : m.commits) expect_back(each.after);
  }

  void run(const std::string& order, const std::vector<step>& second) {
    SCOPED_TRACE(order);
    start_anew();
    model m;
    m.now.items[FIELD]["5000"] = {"STRING F_shared 5000 old\n", 0};
    m.now.items[CLASS]["/shared"] = {"{name:/shared,sql_table:tshared}\n", 0};
    const world first = m.now;
    client witness(settings, 0);
    witness.delete_fields("");  // from now on it sees the dictionary as it is
    {
      admin a("a", WHOLE, settings), b("b", second, settings);
      for (const char turn : order) {
        go_on(turn == 'a' ? a : b, m);
        ASSERT_EQ(witness.fields("F_shared\nF_both\nF_a\nF_b\n") + witness.classes(),
                  text_of(m.now, FIELD) + text_of(m.now, CLASS));
      }
      if (m.now.clock > 0) ++deployed;
    }
    EXPECT_EQ(own_part(witness.fields()), text_of(m.now, FIELD));
    expect_told(first, m);
    EXPECT_EQ(witness.set_fields(""), "ok");
    EXPECT_EQ(witness.set_fields("STRING F_LAST 5004\n"), "ok");  // no lock is left
  }

  // Every order of the first's seven steps and the second's. Where both take the same steps, the
  // orders that the second begins are those that the first does with the names exchanged.
  int run_all(const std::vector<step>& second) {
    std::string order = "aaaaaaa" + std::string(second.size(), 'b');
    do {
      if (runs.takes_next()) run(order, second);
    } while (!HasFailure() && std::next_permutation(order.begin(), order.end()) &&
             (order[0] == 'a' || second != WHOLE));
    return runs.count();
  }

  void fill() override {
    client first(settings, 0);
    first.set_fields("STRING F_shared 5000 old\n");
    first.set_classes("/shared sql_table=tshared\n");
  }

  const std::vector<step> WHOLE = {FETCH_FIELDS, FETCH_CLASSES, TRY_FIELDS, TRY_CLASSES,
                                   END_TRIAL,    FIELDS,        CLASSES};
  int deployed = 0;  // orders in which somebody committed
};

TEST_F(two_sessions, in_every_order) {
  EXPECT_EQ(run_all(WHOLE), 1716);
  EXPECT_GT(deployed, 500 / runs.stride());
}

// The second's set-fields never reached the data manager: its delete-fields is in earnest.
TEST_F(two_sessions, one_of_which_lost_its_trial) {
  EXPECT_EQ(run_all({FETCH_FIELDS, FETCH_CLASSES, TRY_CLASSES, END_TRIAL}), 330);
}

TEST_F(two_sessions, wait_for_each_other_and_not_for_ever) {
  client one(settings), two(settings, 10000);
  EXPECT_EQ(one.set_fields("STRING F_A 5000\n"), "ok");
  const auto begin = std::chrono::steady_clock::now();
  EXPECT_EQ(client(settings, 200).set_fields("STRING F_A 5000\n"), "BUSY");
  EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(200));
  EXPECT_NE(log("dm").find("another process is writing to it"), std::string::npos);
  std::thread later([&] {
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    one.close();
  });
  EXPECT_EQ(two.set_fields("STRING F_A 5000 two\n"), "ok");
  later.join();
  EXPECT_EQ(two.close(), "ok");
}
