// Opening what is no usable dictionary, damage found later, and what SQL users see.
#include <fcntl.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "bench.h"
#include "dm/open.h"

namespace fs = std::filesystem;

class store : public dictionary {
 protected:
  void replace_by(const std::string& bytes) const { std::ofstream(path) << bytes; }
};

TEST_F(store, that_cannot_be_opened_is_named_with_what_to_do) {
  const auto opening = [this](const char* result, const std::string& sentence) {
    const size_t told = log("cm").size();
    EXPECT_EQ(client(settings).opened, result) << sentence;
    EXPECT_NE(log("cm").find(sentence, told), std::string::npos) << log("cm");
  };
  query("PRAGMA user_version = 7");
  opening("STORAGE", "has schema version 7, this program reads versions 1 to 2");
  replace_by(std::string(100000, 'x'));
  opening("STORAGE", "the file is no dictionary");
  replace_by("");
  opening("STORAGE", "the file is no dictionary");
  fs::remove(path);
  opening("NOT_FOUND", "does not exist; correct the entry 'dictionary'");
  EXPECT_FALSE(fs::exists(path));
  fs::create_directory(path);
  opening("STORAGE", "' is no file but a directory.");
  fs::remove(path);
  ASSERT_EQ(mkfifo(path.c_str(), 0644), 0);
  opening("STORAGE", "' is no file but a named pipe.");
  settings.dictionary = "sqlite:/dev/null";
  opening("STORAGE", "' is no file but a device.");
  for (const char* slip : {"mysql:secret", "postgresql:u:secret@h/d", "postgres:/u:secret@h/d",
                           "Postgresql://u:secret@h/d", "sqlite:postgresql://u:secret@h/d",
                           "sqlite:host=h password=secret", "sqlite:"}) {
    settings.dictionary = slip;
    opening("BAD_CONF", "entry 'dictionary' is neither sqlite:PATH nor postgresql://HOST/DATABASE");
  }
  EXPECT_EQ(log("cm").find("secret"), std::string::npos) << log("cm");
}

TEST_F(store, that_is_locked_is_busy) {
  sqlite3* db = nullptr;
  ASSERT_EQ(sqlite3_open(path.c_str(), &db), SQLITE_OK);
  sqlite3_exec(db,
               "PRAGMA locking_mode = EXCLUSIVE; BEGIN EXCLUSIVE; UPDATE dd_fields SET flags = 2",
               nullptr, nullptr, nullptr);
  EXPECT_EQ(client(settings).opened, "BUSY");
  sqlite3_close(db);
}

TEST_F(store, that_cannot_be_written_can_be_read) {
  const uid_t own_user = geteuid();
  std::ofstream(path + "-wal").close();  // without changes
  chmod(path.c_str(), 0444);
  chmod(folder.c_str(), 0555);
  {
    // Permissions do not apply to root.
    if (own_user == 0) {
      ASSERT_EQ(seteuid(65534), 0);
    }
    client reader(settings);
    EXPECT_EQ(reader.opened, "ok");
    EXPECT_EQ(reader.fields("TAV_FLD_LABEL\n"), "STRING TAV_FLD_LABEL 601 Label.\n");
    EXPECT_EQ(reader.set_classes("/n sql_table=t\n"), "WRITE_REFUSED");
    EXPECT_EQ(seteuid(own_user), 0);
    chmod(folder.c_str(), 0755);
    query("UPDATE dd_fields SET descr = 'New.' WHERE name = 'TAV_FLD_LABEL'");
    chmod(folder.c_str(), 0555);
    EXPECT_EQ(reader.fields("TAV_FLD_LABEL\n"), "STRING TAV_FLD_LABEL 601 New.\n");
  }
  chmod(folder.c_str(), 0755);
}

TEST_F(store, shows_its_classes_to_sql_users) {
  client admin(settings);
  EXPECT_EQ(admin.set_classes("/a sql_table=t attrvals=v\n  ARRAY TAV_FLD_ARGS sql_name=u\n"
                              "    STRING TAV_FLD_LABEL sql_name=c descr=it's\n/b sql_table=v\n"),
            "ok");
  EXPECT_EQ(query("SELECT database, class, place, sql_name FROM dd_class_fields"
                  " WHERE field = 'TAV_FLD_LABEL'"),
            "0.0.0.1|/a|$.entries[0].entries[0]|c\n");
  EXPECT_EQ(query("SELECT class, place, field, attribute, value FROM dd_class_attributes"
                  " WHERE attribute IN ('attrvals', 'descr', 'type') ORDER BY attribute, place"),
            "/a|||attrvals|v\n/a|$.entries[0].entries[0]|TAV_FLD_LABEL|descr|it's\n"
            "/a|$.entries[0]|TAV_FLD_ARGS|type|9\n"
            "/a|$.entries[0].entries[0]|TAV_FLD_LABEL|type|5\n");
}

TEST_F(store, counts_what_it_holds) {
  client(settings).set_classes("/a sql_table=t\n/b sql_table=u\n");
  dm::problem why;
  const dm::store_owner held = dm::open_dictionary(settings, {}, why);
  const int64_t id = std::stoll(query("SELECT id FROM dd_databases"));
  int64_t fields = 0, classes = 0;
  EXPECT_TRUE(held->calls->begin(held.get(), false, why) &&
              held->calls->count(held.get(), id, dm::counted::FIELDS, fields, why) &&
              held->calls->count(held.get(), id, dm::counted::CLASSES, classes, why));
  EXPECT_EQ(std::to_string(fields) + "\n", query("SELECT count(*) FROM dd_fields"));
  EXPECT_EQ(classes, 2);
}

// The program as a process.
TEST_F(store, is_made_and_looked_after_by_tav_dict) {
  const std::string conf = folder + "/tav.conf";
  const std::string program =
      fs::read_symlink("/proc/self/exe").parent_path().string() + "/tav_dict ";
  const auto says = [&](const std::string& arguments, int expected, const std::string& text) {
    int status = -1;
    const std::string output = output_of(program + arguments, &status);
    EXPECT_EQ(status, expected) << arguments << output;
    EXPECT_NE(output.find(text), std::string::npos) << output;
  };
  const std::string shared = getenv("TAV_CONF");
  setenv("TAV_CONF", conf.c_str(), 1);
  std::ofstream(conf) << "[dm]\ndictionary = sqlite:new.db\n";
  says("init", 2, "has no entry 'userid'");
  EXPECT_FALSE(fs::exists(folder + "/new.db"));
  std::ofstream(conf)
      << "userid = 0.0.0.9 /admin 1\n[dm]\ndictionary = sqlite:new.db\nfields_writeable = yes\n";
  says("status", 2, "does not exist");
  says("init", 0, "with database 0.0.0.9");
  EXPECT_EQ(fs::status(folder + "/new.db").permissions(), fs::perms(0600));
  says("init", 2, "File exists");
  says("add-database 0.0.1.1", 0, "Added database 0.0.1.1");
  says("add-database 0.0.1.1", 2, "is there already");
  says("add-database 0.0.1", 2, "is no database number");
  says("add-database 0.0.1.65536", 2, "is no database number");
  says("status", 0,
       "schema version: 2\nwriteable: yes\naccepts fields: yes\naccepts classes: no\n"
       "database 0.0.0.9: 47 fields, 0 classes\ndatabase 0.0.1.1: 47 fields, 0 classes\n");
  says("check", 0, "No findings");
  says("", 2, "subcommand");
  says("--help", 0, "add-database");
  says("--version", 0, "tav_dict ");
  setenv("TAV_CONF", shared.c_str(), 1);
}
