// What befalls the file of a dictionary while others have it open: moves, links, missing rights,
// triggers, waits.
#include <fcntl.h>
#include <signal.h>
#include <sqlite3.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdarg>
#include <filesystem>

#include "bench.h"
#include "dm/open.h"

namespace fs = std::filesystem;

// --- Doubles of the system's calls ------------------------------------------------------------

// Once, in the middle of the next commit of a file.
static std::function<void()> in_commit;
// The engine's waits: not slept, but counted; each is followed by a call.
static int milliseconds_waited = 0;
static std::function<void()> after_wait;
// Whether the file system knows files without a name; the most names that a file had whose name was
// taken away.
static bool knows_nameless = true;
static nlink_t most_names = 0;

extern "C" int open(const char* path, int flags, ...) {
  va_list rest;
  va_start(rest, flags);
  const mode_t mode = (flags & (O_CREAT | __O_TMPFILE)) != 0 ? va_arg(rest, mode_t) : 0;
  va_end(rest);
  if (!knows_nameless && (flags & O_TMPFILE) == O_TMPFILE) return errno = EOPNOTSUPP, -1;
  return openat(AT_FDCWD, path, flags, mode);
}

extern "C" int unlink(const char* path) noexcept {
  struct stat file {};
  if (stat(path, &file) == 0) most_names = std::max(most_names, file.st_nlink);
  return unlinkat(AT_FDCWD, path, 0);
}

static int call_in_commit(void*) {
  if (const auto call = std::exchange(in_commit, nullptr)) call();
  return 0;
}

static int watch_commits(sqlite3* db, char**, const sqlite3_api_routines*) {
  sqlite3_commit_hook(db, call_in_commit, nullptr);
  return SQLITE_OK;
}

static int wait_at_once(sqlite3_vfs*, int microseconds) {
  milliseconds_waited += microseconds / 1000;
  if (after_wait) after_wait();
  return microseconds;
}

class dictionary_file : public dictionary {
 protected:
  dictionary_file() : counting(*sqlite3_vfs_find(nullptr)) {
    sqlite3_auto_extension(reinterpret_cast<void (*)()>(watch_commits));
    counting.zName = "counting";
    counting.xSleep = wait_at_once;
    sqlite3_vfs_register(&counting, 1);
    milliseconds_waited = 0;
  }
  ~dictionary_file() override {
    see_all();
    sqlite3_vfs_unregister(&counting);
    sqlite3_reset_auto_extension();
    after_wait = nullptr;
  }

  void expect_logged(const std::string& sentence) const {
    const std::string logs = log("cm") + log("dm");
    EXPECT_NE(logs.find(sentence), std::string::npos) << sentence << "\n" << logs;
  }

  // A new dictionary under the old one's name, which is moved away with all that is beside it.
  void replace_file() const {
    for (const char* ending : {"", "-wal", "-shm"}) {
      if (fs::exists(path + ending)) fs::rename(path + ending, folder + "/moved.db" + ending);
    }
    dm::problem why;
    EXPECT_TRUE(make(settings, why)) << why.sentence;
  }

  // As somebody who may read the dictionary and write nowhere; permissions do not apply to root.
  void only_look() const {
    chmod(path.c_str(), 0644);
    chmod(folder.c_str(), 0555);
    if (geteuid() == 0) {
      EXPECT_EQ(seteuid(65534), 0);
    }
  }
  void see_all() const {
    EXPECT_EQ(seteuid(getuid()), 0);
    chmod(folder.c_str(), 0755);
  }

  sqlite3_vfs counting;
};

// An administrator whose first set-fields, which is provisional, is over.
class deployer : public client {
 public:
  explicit deployer(const dm::settings& settings) : client(settings, 10000) {
    set_fields("");
    delete_fields("");
  }
};

// --- Names ------------------------------------------------------------------------------------

TEST_F(dictionary_file, that_was_replaced_is_not_written) {
  deployer early(settings), late(settings);
  EXPECT_EQ(early.set_fields("STRING F_OLD 5000\n"), "ok");
  in_commit = [this] { replace_file(); };
  EXPECT_EQ(early.set_fields("STRING F_LOST 5001\n"), "NOT_CONNECTED");
  expect_logged(
      "the file was moved or replaced while the changes were committed: whether they are stored is "
      "UNKNOWN; before anything opens this name again, move");
  const std::string made = content();
  EXPECT_EQ(late.set_fields("STRING F_LATE 5002\n"), "STORAGE");
  expect_logged("was moved or replaced since it was opened; nothing of the operation is stored");
  EXPECT_EQ(late.fields("F_LOST\n"), "STRING F_LOST 5001\n");  // in the one that it has open
  EXPECT_EQ(content(), made);
}

TEST_F(dictionary_file, whose_link_leads_elsewhere_is_not_written) {
  const std::string other = folder + "/other.db", link = folder + "/link.db";
  fs::copy_file(path, other);
  fs::create_symlink(path, link);
  settings.dictionary = "sqlite:" + link;
  deployer admin(settings);
  EXPECT_EQ(admin.set_fields("STRING F_A 5000\n"), "ok");
  fs::remove(link);
  fs::create_symlink(other, link);
  EXPECT_EQ(admin.set_fields("STRING F_B 5001\n"), "STORAGE");
  EXPECT_EQ(client(settings).fields("F_A\nF_B\n"), "");
}

TEST_F(dictionary_file, beside_which_a_pipe_stands_is_not_waited_for) {
  ASSERT_EQ(mkfifo((path + "-journal").c_str(), 0600), 0);
  EXPECT_EQ(client(settings).opened, "STORAGE");
  expect_logged("which is no file; move that away");
}

TEST_F(dictionary_file, with_two_names_is_refused) {
  deployer admin(settings);
  fs::create_hard_link(path, folder + "/other.db");
  EXPECT_EQ(admin.set_fields("STRING F_A 5000\n"), "STORAGE");
  EXPECT_EQ(client(settings).opened, "STORAGE");
  expect_logged("has 2 names (hard links)");
  fs::remove(folder + "/other.db");
  EXPECT_EQ(client(settings).fields("F_A\n"), "");
}

TEST_F(dictionary_file, never_has_two_names_while_it_is_made) {
  settings.dictionary = "sqlite:" + folder + "/new.db";
  dm::problem why;
  most_names = 0;
  knows_nameless = false;
  EXPECT_TRUE(make(settings, why)) << why.sentence;
  EXPECT_FALSE(make(settings, why));
  knows_nameless = true;
  EXPECT_LE(most_names, 1u);
  const fs::directory_iterator files(folder), end;
  EXPECT_EQ(std::distance(files, end), 2);
}

// --- Readers without rights -------------------------------------------------------------------

// A log that its writer has left there, without what readers need beside it.
TEST_F(dictionary_file, is_never_read_without_its_log) {
  const std::string left = folder + "/left.db", link = folder + "/links/link.db";
  fs::create_directory(folder + "/links");
  fs::create_symlink(left, link);
  {
    deployer admin(settings);
    EXPECT_EQ(admin.set_fields("STRING F_A 5000\n"), "ok");
    for (const char* ending : {"", "-wal"}) fs::copy_file(path + ending, left + ending);
  }
  chmod(left.c_str(), 0644);
  settings.dictionary = "sqlite:" + link;
  only_look();
  dm::problem why;
  EXPECT_EQ(dm::open_dictionary(settings, {50}, why), nullptr);
  EXPECT_NE(why.sentence.find("/link.db': it cannot be opened"), std::string::npos) << why.sentence;
  EXPECT_EQ(milliseconds_waited, 50);
  // The next one comes in time: a writer takes the log in, and goes.
  after_wait = [&] {
    if (milliseconds_waited != 50 + 1 + 2) return;
    see_all();
    EXPECT_EQ(client(settings).fields("F_A\n"), "STRING F_A 5000\n");
    only_look();
  };
  EXPECT_EQ(client(settings).fields("F_A\n"), "STRING F_A 5000\n");
  EXPECT_EQ(milliseconds_waited, 50 + 1 + 2);
}

TEST_F(dictionary_file, is_read_beside_a_busy_writer_without_any_right) {
  if (getuid() != 0) GTEST_SKIP() << "only root can be two users";
  chmod(path.c_str(), 0644);
  sqlite3_vfs_unregister(&counting);  // waits are real
  const pid_t writer = fork();
  if (writer == 0) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    for (int i = 1;; ++i) {
      deployer(settings).set_fields("STRING F_A 5000 " + std::to_string(i) + "\n");
    }
  }
  only_look();
  for (int i = 0, seen = 0; i < 300; ++i) {
    client reader(settings, 10000);
    EXPECT_EQ(reader.opened, "ok");
    const std::string field = reader.fields("F_A\n"), begin = "STRING F_A 5000 ";
    EXPECT_TRUE(field.empty() || field.rfind(begin, 0) == 0) << field;
    const int written = field.empty() ? 0 : std::atoi(field.substr(begin.size()).c_str());
    EXPECT_GE(written, seen);  // nobody goes back in time
    seen = written;
  }
  see_all();
  kill(writer, SIGKILL);
  waitpid(writer, nullptr, 0);
}

TEST_F(dictionary_file, is_not_read_where_no_memory_is_left_for_its_copy) {
  only_look();
  int refused = 0;
  for (std::string opened; opened != "ok"; ++refused) {
    ASSERT_LT(refused, 100);
    sqlite3_hard_heap_limit64(sqlite3_memory_used() + refused * (1 << 15));
    opened = client(settings, 10).opened;
    sqlite3_hard_heap_limit64(1ll << 40);  // 0 would leave the limit
  }
  EXPECT_GT(refused, int(fs::file_size(path) >> 15));
}

// --- Rows and waits ---------------------------------------------------------------------------

TEST_F(dictionary_file, whose_trigger_swallows_rows_stays_as_it_was) {
  deployer admin(settings);
  const std::string one = "STRING F_ONE 5000\n", two = "STRING F_TWO 5001\n";
  const std::string old = "/old sql_table=t\n  STRING F_ONE sql_name=c\n";
  EXPECT_EQ(admin.set_fields(one), "ok");
  EXPECT_EQ(admin.set_classes(old), "ok");
  EXPECT_EQ(admin.set_fields("STRING F_ANY 5009\n"), "ok");
  const std::string before = content();
  const std::function<std::string()>
      add = [&] { return admin.set_fields(two + "INT F_3 5002\n"); },
      describe = [&] { return admin.set_fields("STRING F_ONE 5000 New.\n"); },
      erase = [&] { return admin.delete_fields("STRING F_ANY 5009\n"); },
      add_class = [&] { return admin.set_classes("/new sql_table=n\n"); },
      change_class = [&] { return admin.set_classes("/old descr=New.\n"); },
      add_table = [&] { return admin.set_classes("/old\n  ARRAY TAV_FLD_ARGS sql_name=a\n"); };
  const struct {
    const char* guard;
    std::function<std::string()> write;
  } rows[] = {
      {"INSERT ON dd_fields WHEN NEW.number = 5001", add},
      {"UPDATE ON dd_fields", describe},
      {"DELETE ON dd_fields", erase},
      {"INSERT ON dd_classes", add_class},
      {"UPDATE ON dd_classes", change_class},
      {"INSERT ON dd_tables", add_table},
      {"UPDATE ON dd_databases", describe},
  };
  for (const auto& row : rows) {
    query(std::string("CREATE TRIGGER thief BEFORE ") + row.guard +
          " BEGIN SELECT RAISE(IGNORE); END");
    EXPECT_EQ(row.write(), "STORAGE") << row.guard;
    query("DROP TRIGGER thief");
    EXPECT_TRUE(content() == before) << row.guard;
  }
  expect_logged("it did not take all changes");
  EXPECT_EQ(admin.delete_fields("STRING F_ANY 5009\nSTRING F_ANY 5009\n"), "ok");  // named twice
  for (const auto& row : rows) EXPECT_EQ(row.write(), "ok") << row.guard;
}

TEST_F(dictionary_file, is_waited_for_once_by_a_run) {
  client writer(settings), other(settings, 200);
  EXPECT_EQ(writer.set_fields("STRING F_A 5000\n"), "ok");
  EXPECT_EQ(other.set_fields("STRING F_B 5001\n"), "BUSY");
  EXPECT_EQ(milliseconds_waited, 200);
  EXPECT_EQ(other.set_classes("/b sql_table=t\n", 128), "BUSY");
  EXPECT_EQ(milliseconds_waited, 200);
}
