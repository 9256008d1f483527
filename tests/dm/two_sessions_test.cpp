// Two administrators deploy overlapping fields and classes: every order in which their operations
// can reach the dictionary, each judged by a model of what one writer at a time allows.
#include <algorithm>
#include <chrono>
#include <filesystem>
#include <map>
#include <thread>

#include "bench.h"

namespace {

enum step { FETCH_FIELDS, FETCH_CLASSES, TRY_FIELDS, TRY_CLASSES, END_TRIAL, FIELDS, CLASSES };

// What is committed: the text of each item, and when it was written.
struct item {
  std::string text;
  int written;
};
struct world {
  std::map<int, item> fields;  // by number
  std::map<std::string, item> classes;
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

}  // namespace

// Both change the shared one and add that of both, as far as each knows; each adds its own.
static std::map<int, std::string> fields_of(const admin& who) {
  const int own = who.name == "a" ? 5002 : 5003;
  return {{5000, "F_SHARED"}, {5001, "F_BOTH"}, {own, "F_" + who.name}};
}
static std::vector<std::string> classes_of(const admin& who) {
  return {"/shared", "/both", "/" + who.name};
}

static std::string field_text(int number, const std::string& name, const admin& who, bool marked) {
  return "STRING " + name + " " + std::to_string(number) + (marked ? "! " : " ") + who.name + "\n";
}

template <class Map>
static std::string text_of(const Map& items) {
  std::string text;
  for (const auto& [key, value] : items) text += value.text;
  return text;
}

// The request for fields: all of them marked as fetched, or (to end the trial) the others only.
static std::string request(const admin& who, bool all) {
  std::string text;
  for (const auto& [number, name] : fields_of(who)) {
    const bool known = who.seen.fields.count(number) != 0;
    if (all || !known) text += field_text(number, name, who, known);
  }
  return text;
}

static std::string request_classes(const admin& who) {
  std::string text;
  for (const std::string& name : classes_of(who)) {
    text += name + " sql_table=t" + name.substr(1) + " descr=" + who.name + "\n";
  }
  return text;
}

// --- The model --------------------------------------------------------------------------------

namespace {

struct model {
  world now;
  const admin* writer = nullptr;  // who has the dictionary for itself
};

}  // namespace

template <class Map, class Key>
static bool is_foreign(const Map& items, const Key& key, const admin& who) {
  const auto found = items.find(key);
  return found != items.end() && found->second.written > who.seen.clock;
}

static bool fields_conflict(const model& m, const admin& who) {
  const auto mine = fields_of(who);
  return std::any_of(mine.begin(), mine.end(),
                     [&](const auto& f) { return is_foreign(m.now.fields, f.first, who); });
}

static bool classes_conflict(const model& m, const admin& who) {
  const auto mine = classes_of(who);
  return std::any_of(mine.begin(), mine.end(),
                     [&](const auto& name) { return is_foreign(m.now.classes, name, who); });
}

// What the step must report, with what it does to the model.
static std::string expected(model& m, const admin& who, step s, bool tried) {
  const bool writes = s != FETCH_FIELDS && s != FETCH_CLASSES && s != END_TRIAL;
  if (writes && m.writer != nullptr && m.writer != &who) return "BUSY";
  const bool is_trial = s == TRY_FIELDS || s == TRY_CLASSES;
  if (is_trial && tried) m.writer = &who;
  switch (s) {
    case FETCH_FIELDS:
      return text_of(m.now.fields);
    case FETCH_CLASSES:
      return text_of(who.seen.classes);
    case END_TRIAL:
      if (m.writer == &who) m.writer = nullptr;
      // Without the trial that it ends it deletes in earnest, but nothing of another.
      return !tried && fields_conflict(m, who) ? "CONFLICT TAV_FLD_FIELD_NAME" : "ok";
    case TRY_FIELDS:
    case FIELDS:
      if (fields_conflict(m, who)) return "CONFLICT TAV_FLD_FIELD_NAME";
      break;
    default:
      if (classes_conflict(m, who)) return "CONFLICT TAV_FLD_NAME";
  }
  if (is_trial) return "ok";
  ++m.now.clock;
  if (s == FIELDS) {
    for (const auto& [number, name] : fields_of(who)) {
      m.now.fields[number] = {field_text(number, name, who, false), m.now.clock};
    }
  } else {
    for (const std::string& name : classes_of(who)) {
      m.now.classes[name] = {
          "{name:" + name + ",sql_table:t" + name.substr(1) + ",descr:" + who.name + "}\n",
          m.now.clock};
    }
  }
  return "ok";
}

// --- The runs ---------------------------------------------------------------------------------

// All fields but the predefined ones, which come first.
static std::string own_fields(client& session) {
  const std::string text = session.fields();
  const size_t first = text.find("STRING F_");
  return first == std::string::npos ? text : text.substr(first);
}

static std::string carry_out(admin& who, step s) {
  switch (s) {
    case FETCH_FIELDS:
      return own_fields(who.session);
    case FETCH_CLASSES:
      return who.session.classes();
    case END_TRIAL:
      return who.session.delete_fields(request(who, false));
    case TRY_FIELDS:
    case FIELDS:
      return who.session.set_fields(request(who, true));
    default:
      return who.session.set_classes(request_classes(who), s == TRY_CLASSES ? 128 : 0);
  }
}

class two_sessions : public dictionary {
 protected:
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

  void run(const std::string& order, const std::vector<step>& second) {
    SCOPED_TRACE(order);
    start_anew();
    model m;
    m.now.fields[5000] = {"STRING F_SHARED 5000 old\n", 0};
    m.now.classes["/shared"] = {"{name:/shared,sql_table:tshared}\n", 0};
    client witness(settings, 0);
    witness.delete_fields("");  // from now on it sees the dictionary as it is
    {
      admin a("a", WHOLE, settings), b("b", second, settings);
      for (const char turn : order) {
        go_on(turn == 'a' ? a : b, m);
        ASSERT_EQ(witness.fields("F_SHARED\nF_BOTH\nF_a\nF_b\n") + witness.classes(),
                  text_of(m.now.fields) + text_of(m.now.classes));
      }
      if (m.now.clock > 0) ++deployed;
    }
    EXPECT_EQ(own_fields(witness), text_of(m.now.fields));
    EXPECT_EQ(witness.set_fields(""), "ok");
    EXPECT_EQ(witness.set_fields("STRING F_LAST 5004\n"), "ok");  // no lock is left
  }

  // Every order of the first's seven steps and the second's.
  int run_all(const std::vector<step>& second) {
    std::string order = "aaaaaaa" + std::string(second.size(), 'b');
    int orders = 0;
    do {
      run(order, second);
      ++orders;
    } while (!HasFailure() && std::next_permutation(order.begin(), order.end()));
    return orders;
  }

  // The dictionary with what both share; another engine's store puts its own way here.
  void start_anew() {
    namespace fs = std::filesystem;
    if (kept.empty()) {
      client first(settings, 0);
      first.set_fields("STRING F_SHARED 5000 old\n");
      first.set_classes("/shared sql_table=tshared\n");
      first.close();
      fs::copy_file(path, kept = folder + "/kept.db");
    }
    for (const char* rest : {"-wal", "-shm"}) fs::remove(path + rest);
    fs::copy_file(kept, path, fs::copy_options::overwrite_existing);
  }

  const std::vector<step> WHOLE = {FETCH_FIELDS, FETCH_CLASSES, TRY_FIELDS, TRY_CLASSES,
                                   END_TRIAL,    FIELDS,        CLASSES};
  std::string kept;
  int deployed = 0;  // orders in which somebody committed
};

TEST_F(two_sessions, in_every_order) {
  EXPECT_EQ(run_all(WHOLE), 3432);
  EXPECT_GT(deployed, 1000);
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
  std::thread later([&] {
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    one.close();
  });
  EXPECT_EQ(two.set_fields("STRING F_A 5000 two\n"), "ok");
  later.join();
  EXPECT_EQ(two.close(), "ok");
}
