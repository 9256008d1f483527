// A plan is stale exactly where something that it touches or depends on changed since.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <regex>

#include "tests/tool/workshop.h"

static const char BASE[] =
    "STRING F_A { ID = 20001; DESCR = \"a\"; }\nSTRING F_OTHER { ID = 20002; }\n"
    "ARRAY F_LIST { ID = 20003; }\nARRAY F_NESTED { ID = 20004; }\n"
    "STORABLE CLASS /a { STRING F_A { } }\n"
    "STORABLE CLASS /a IMPLEMENTATION TESSEL7 { SQL_TABLE = \"a_t\"; STRING F_A { SQL_COLUMN = "
    "\"a\"; } }\n"
    "STORABLE CLASS /a/b { }\nSTORABLE CLASS /a/b/c { }\n"
    "STORABLE CLASS /d { STRING F_A { } }\n"
    "STORABLE CLASS /d IMPLEMENTATION TESSEL7 { SQL_TABLE = \"d_t\"; STRING F_A { SQL_COLUMN = "
    "\"a\"; } }\n";

// Adds a field, and to a subclass an array that uses it.
static const char WANTED[] =
    "STRING F_NEW { ID = 20010; }\n"
    "STORABLE CLASS /a/b { ARRAY F_LIST { STRING F_A { } STRING F_NEW { } } }\n"
    "STORABLE CLASS /a/b IMPLEMENTATION TESSEL7 { ARRAY F_LIST { SQL_TABLE = \"list_t\";"
    " STRING F_A { SQL_COLUMN = \"a\"; } STRING F_NEW { SQL_COLUMN = \"new\"; } } }\n";

// A change of the other kind: no array, so that nobody looks at subclasses.
static const char PLAIN[] =
    "STORABLE CLASS /d { DESCR = \"plain\"; STRING F_A { } }\n"
    "STORABLE CLASS /d IMPLEMENTATION TESSEL7 { SQL_TABLE = \"d_t\"; STRING F_A { SQL_COLUMN = "
    "\"a\"; } }\n";

namespace {

struct change_row {
  const char* what;
  std::vector<std::string> texts;  // deployed one after the other
  const char* stale;               // what apply says, up to the deployment; "" where it applies
  const char* wanted = WANTED;
};

}  // namespace

static std::string class_text(const std::string& name, const std::string& table,
                              const std::string& body = "") {
  return "STORABLE CLASS " + name + " { " + body + " }\nSTORABLE CLASS " + name +
         " IMPLEMENTATION TESSEL7 { SQL_TABLE = \"" + table + "\"; }\n";
}

static const std::vector<change_row> CHANGES = {
    {"nothing", {}, ""},
    {"a field elsewhere", {"STRING F_X { ID = 20050; }"}, ""},
    {"a field that is not used", {"STRING F_OTHER { ID = 20002; DESCR = \"new\"; }"}, ""},
    {"a field that is used",
     {"STRING F_A { ID = 20001; DESCR = \"new\"; }"},
     "Field 'F_A' was changed"},
    {"the new field", {"STRING f_new { ID = 20010; }"}, "Field 'F_NEW' was added"},
    {"the new number",
     {"STRING F_THIEF { ID = 20010; }"},
     "Field 'F_THIEF' was added with the number 20010"},
    {"the class itself", {"STORABLE CLASS /a/B { DESCR = \"x\"; }"}, "Class '/a/b' was changed"},
    {"a superclass",
     {"STORABLE CLASS /a { DESCR = \"x\"; STRING F_A { } }\nSTORABLE CLASS /a IMPLEMENTATION "
      "TESSEL7 { SQL_TABLE = \"a_t\"; STRING F_A { SQL_COLUMN = \"a\"; } }"},
     "Class '/a' was changed"},
    {"a subclass", {"STORABLE CLASS /a/b/c { DESCR = \"x\"; }"}, "Class '/a/b/c' was changed"},
    {"a new subclass", {"STORABLE CLASS /a/b/new { }"}, "Class '/a/b/new' was added below '/a/b'"},
    {"a class beside it", {"STORABLE CLASS /a/z { }"}, ""},
    {"a class elsewhere", {PLAIN}, ""},
    {"the table", {class_text("/e", "LIST_T")}, "Class '/e' was given table 'list_t'"},
    {"another table", {class_text("/e", "e_t")}, ""},
    {"something, and back again",
     {"STORABLE CLASS /a/b { DESCR = \"x\"; }", "STORABLE CLASS /a/b { }"},
     ""},
    {"a new subclass where no array is planned", {"STORABLE CLASS /d/e { }"}, "", PLAIN},
    {"the plan's class where another one is planned", {WANTED}, "", PLAIN},
};

static std::string last_line(const std::string& text) {
  const size_t end = text.find_last_not_of('\n');
  const size_t start = text.rfind('\n', end);
  return text.substr(start == text.npos ? 0 : start + 1, end - start);
}

class planning : public testing::Test {
 protected:
  planning() {
    place.write("base.def", BASE);
    EXPECT_EQ(place.run({"replace", "base.def"}).exit_status, 0);
    place.save();
  }
  void make(const std::string& wanted, const std::vector<std::string>& more = {}) {
    place.write("wanted.def", wanted);
    std::vector<std::string> words{"dict", "plan", "wanted.def", "--output", "a.plan"};
    words.insert(words.end(), more.begin(), more.end());
    const run_result made = place.run(words);
    EXPECT_EQ(made.exit_status, 1) << made.out << made.err;
  }
  void deploy(const std::string& text) {
    place.write("other.def", text);
    const run_result done = place.run({"replace", "other.def"});
    EXPECT_EQ(done.exit_status, 0) << done.out << done.err;
  }
  run_result apply(const std::vector<std::string>& more = {}) {
    std::vector<std::string> words{"dict", "apply", "a.plan", "--yes"};
    words.insert(words.end(), more.begin(), more.end());
    return place.run(words);
  }

  workshop place;
};

TEST_F(planning, is_stale_exactly_where_something_changed) {
  for (const change_row& row : CHANGES) {
    SCOPED_TRACE(row.what);
    place.restore();
    make(row.wanted);
    for (const std::string& text : row.texts) deploy(text);
    const std::string before = place.dictionary();
    const run_result dry = apply({"--dry-run"});
    EXPECT_EQ(place.dictionary(), before);
    const run_result done = apply();
    const bool is_stale = *row.stale != '\0';
    EXPECT_EQ(dry.exit_status, is_stale ? 1 : 0) << dry.out << dry.err;
    EXPECT_EQ(done.exit_status, is_stale ? 1 : 0) << done.out << done.err;
    if (!is_stale) {
      EXPECT_EQ(last_line(done.out).rfind("Deployed as deployment ", 0), 0u) << done.out;
      EXPECT_EQ(place.run({"dict", "plan", "wanted.def"}).out, "Nothing to do.\n");
      continue;
    }
    EXPECT_EQ(done.out.rfind(std::string(row.stale) + " by deployment 5 at ", 0), 0u) << done.out;
    EXPECT_EQ(last_line(done.out), "Nothing was deployed: make the plan anew.");
    EXPECT_EQ(std::count(done.out.begin(), done.out.end(), '\n'), 2) << done.out;
    EXPECT_EQ(place.dictionary(), before);
  }
  EXPECT_EQ(place.run({"dict", "check"}).out, "No findings.\n");
}

TEST_F(planning, is_stale_though_the_journal_no_longer_tells_why) {
  make(WANTED);
  deploy("STRING F_A { ID = 20001; DESCR = \"new\"; }");
  EXPECT_EQ(place.run({"dict", "prune", "--before", "@2998-01-01", "--yes"}).exit_status, 0);
  const run_result done = apply();
  EXPECT_EQ(done.out,
            "Field 'F_A' was changed; the journal no longer tells by whom.\n"
            "Nothing was deployed: make the plan anew.\n");
  EXPECT_EQ(done.exit_status, 1);
}

TEST_F(planning, is_refused_in_another_place_or_by_another_right) {
  make(WANTED);
  const auto refusal = [&](const std::vector<std::string>& more = {}) {
    const run_result done = apply(more);
    EXPECT_EQ(done.exit_status, 2) << done.out;
    return done.err;
  };
  EXPECT_EQ(refusal({"-d", "0.0.0.2"}),
            "tav_dict: The plan is for database 0.0.0.1, not for 0.0.0.2.\n");
  const std::string conf = place.read("tav.conf");
  place.write("tav.conf", "userid = 0.0.0.1 /admin 1\n[dm]\nfields_writeable = yes\n");
  EXPECT_EQ(refusal(),
            "tav_dict: The entry 'objects_writeable' of tav.conf does not allow to write.\n");
  place.write("tav.conf", conf);
  deploy("STRING F_X { ID = 20050; }");
  make(WANTED);
  place.restore();
  const std::string older = "does not hold record 5 as the plan saw it";
  EXPECT_NE(refusal().find(older), std::string::npos);
  deploy("STRING F_Y { ID = 20051; }");
  deploy("STRING F_Z { ID = 20052; }");
  EXPECT_NE(refusal().find(older), std::string::npos);
  EXPECT_EQ(place.run({"dict", "backup", "copy.db"}).exit_status, 0);
  for (const char* part : {"dictionary.db", "dictionary.db-wal", "dictionary.db-shm"})
    std::filesystem::remove(place.path(part));
  EXPECT_EQ(place.run({"dict", "restore", "copy.db"}).exit_status, 0);
  const std::regex another(
      "tav_dict: The plan was made for dictionary './dictionary.db' with identity ([0-9a-f]{32}), "
      "and this is another one, or one that was made anew from a backup: './dictionary.db' with "
      "identity (?!\\1)[0-9a-f]{32}. Make the plan anew.\n");
  const std::string told = refusal();
  EXPECT_TRUE(std::regex_match(told, another)) << told;
}

// Another database has things of its own, which are nobody else's.
TEST_F(planning, is_for_one_database) {
  EXPECT_EQ(place.run({"dict", "add-database", "0.0.0.2"}).exit_status, 0);
  EXPECT_EQ(place.run({"replace", "-d", "0.0.0.2", "base.def"}).exit_status, 0);
  make(WANTED, {"-d", "0.0.0.2"});
  deploy("STORABLE CLASS /a/b { DESCR = \"x\"; }");
  const std::string before = place.run({"dict", "export"}).out;
  for (const run_result& shown :
       {place.run({"dict", "plan", "-d", "0.0.0.2", "wanted.def"}), apply({"--dry-run"})})
    EXPECT_EQ(shown.out.rfind("database 0.0.0.2:\n+ field F_NEW", 0), 0u) << shown.out;
  EXPECT_EQ(apply({"-d", "0.0.0.2"}).exit_status, 0);
  EXPECT_EQ(place.run({"dict", "export"}).out, before);
  EXPECT_EQ(place.run({"dict", "plan", "-d", "0.0.0.2", "wanted.def"}).exit_status, 0);
}

TEST_F(planning, tells_whom_the_dictionary_does_not_take) {
  if (::geteuid() != 0) GTEST_SKIP() << "only root can become somebody else";
  make(WANTED);
  for (const char* name : {"a.plan", "tav.conf", "dictionary.db"})
    ASSERT_EQ(::chmod(place.path(name).c_str(), 0644), 0);
  ASSERT_EQ(::chmod(place.path(".").c_str(), 0755), 0);
  run_options other;
  other.program = "/usr/bin/setpriv";
  for (const char* how : {"--dry-run", "--yes"}) {
    const run_result done = place.run(
        {"--reuid=65534", "--regid=65534", "--clear-groups", TAV_DICT, "apply", "a.plan", how},
        other);
    EXPECT_EQ(done.exit_status, 2) << how << done.out;
    EXPECT_NE(done.err.find("it cannot be written; check the permissions"), done.err.npos)
        << how << done.err;
  }
}

TEST_F(planning, takes_regular_files_alone) {
  make(WANTED);
  const std::string sound = place.read("a.plan");
  const std::string no_plan =
      " is no plan, or was changed after it was made, and --output replaces nothing else: name "
      "another file, or remove this one.\n";
  const std::string no_file = " is no regular file, and a plan is always one";
  ASSERT_EQ(::mkfifo(place.path("pipe").c_str(), 0600), 0);
  for (const char* name : {"pipe", "/dev/zero"}) {
    const run_result read = place.run({"dict", "apply", name, "--yes"});
    EXPECT_EQ(read.exit_status, 2);
    EXPECT_EQ(read.err,
              "tav_dict: File '" + std::string(name) + "'" + no_file + "; - is standard input.\n");
    const run_result written = place.run({"dict", "plan", "wanted.def", "--output", name});
    EXPECT_EQ(written.exit_status, 2);
    EXPECT_EQ(written.err, "tav_dict: File '" + std::string(name) + "'" + no_file + ".\n");
  }
  const run_result dash = place.run({"dict", "plan", "wanted.def", "--output", "-"});
  EXPECT_EQ(dash.exit_status, 2);
  EXPECT_EQ(dash.err,
            "tav_dict: --output names the file for the plan, and standard output is none.\n");
  for (const std::string& text :
       {std::string(), std::string("{\"tav_plan\": 1, \"mine\": 2}\n"), sound + " "}) {
    place.write("mine", text);
    EXPECT_EQ(place.run({"dict", "plan", "wanted.def", "--output", "mine"}).err,
              "tav_dict: File 'mine'" + no_plan);
    EXPECT_EQ(place.read("mine"), text);
  }
  make(WANTED);  // over the older one
  run_options input;
  input.input = "a.plan";
  EXPECT_EQ(place.run({"dict", "apply", "-", "--yes"}, input).exit_status, 0);
}

TEST_F(planning, tells_what_was_renamed) {
  make(WANTED);
  EXPECT_EQ(place.run({"dict", "rename", "class", "/A", "/n", "--yes"}).exit_status, 0);
  EXPECT_EQ(std::regex_replace(apply().out, std::regex(" at .*"), ""),
            "Class '/a' was renamed to '/n' by deployment 5\n"
            "Class '/a/b' was renamed to '/n/b' by deployment 5\n"
            "Class '/a/b/c' was renamed to '/n/b/c' by deployment 5\n"
            "Nothing was deployed: make the plan anew.\n");
}

TEST_F(planning, notices_a_changed_byte) {
  make(WANTED);
  const std::string sound = place.read("a.plan");
  const std::string before = place.dictionary();
  for (size_t at = 0; at < sound.size(); at += 1 + sound.size() / 60) {
    std::string changed = sound;
    changed[at] = changed[at] == ' ' ? '\t' : changed[at] == '1' ? '2' : '1';
    place.write("a.plan", changed);
    EXPECT_EQ(apply().exit_status, 2) << at;
  }
  for (const std::string& changed : {sound + " ", sound.substr(0, sound.size() - 1)}) {
    place.write("a.plan", changed);
    EXPECT_EQ(apply().exit_status, 2);
  }
  EXPECT_EQ(place.dictionary(), before);
  place.write("a.plan", sound);
  EXPECT_EQ(apply().exit_status, 0);
}

TEST_F(planning, is_done_where_everything_is_so_already) {
  make(WANTED);
  deploy(WANTED);
  EXPECT_EQ(apply().out, "Nothing to do: everything is as the plan would make it.\n");
}

TEST_F(planning, is_not_deployed_again_where_it_was_taken_back) {
  make(WANTED);
  EXPECT_EQ(apply().exit_status, 0);
  EXPECT_EQ(place.run({"dict", "undo", "5", "--yes"}).exit_status, 0);
  const std::string before = place.dictionary();
  for (const auto& more : {std::vector<std::string>{}, {"--dry-run"}}) {
    const run_result again = apply(more);
    EXPECT_EQ(again.exit_status, 1) << again.err;
    EXPECT_EQ(std::regex_replace(again.out, std::regex(" at .*"), ""),
              "The plan was applied by deployment 5, and what it changed was changed again since:\n"
              "Field 'F_NEW' was removed by deployment 6\n"
              "Class '/a/b' was changed by deployment 6\n"
              "Nothing was deployed: make the plan anew.\n");
  }
  EXPECT_EQ(place.dictionary(), before);
}

// Answers the question of apply once that was done; gives what it showed.
static std::string answer_after(workshop& place, const std::string& done) {
  place.write("job.sh", "until grep -q 'Type yes' asked; do sleep 0.05; done; " + done +
                            " >/dev/null 2>&1; echo yes; sleep 0.2\n");
  place.write("ask.sh", ": >asked; sh job.sh | script -qefc '" TAV_DICT
                        " apply a.plan' /dev/null | tee asked\n");
  run_options options;
  options.program = "/bin/sh";
  return place.run({"ask.sh"}, options).out;
}

// While a person thinks, somebody else deploys: what was looked at before the question does not
// count.
TEST_F(planning, looks_again_when_the_question_is_answered) {
  make(WANTED);
  place.write("other.def", "STORABLE CLASS /a/b { DESCR = \"x\"; }");
  const std::string out = answer_after(place, TAV_DEPLOY " replace other.def");
  EXPECT_NE(out.find("Type yes"), out.npos) << out;
  EXPECT_NE(out.find("Class '/a/b' was changed by deployment 5 at "), out.npos) << out;
  EXPECT_NE(out.find("Nothing was deployed: make the plan anew."), out.npos) << out;
  make(WANTED);
  // Nobody is asked who does not see what about.
  run_options shell;
  shell.program = "/bin/sh";
  const std::string unseen =
      place.run({"-c", "script -qefc '" TAV_DICT " apply a.plan | cat' /dev/null"}, shell).out;
  EXPECT_NE(unseen.find("There is nobody to ask whether to deploy this"), unseen.npos) << unseen;
  const std::string late = answer_after(place, TAV_DICT " apply a.plan --yes");
  EXPECT_NE(late.find("\nNothing to do: the plan was applied by deployment 6."), late.npos) << late;
}
