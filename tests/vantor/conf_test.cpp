#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>

#include "dd/vantor.h"
#include "in_child.h"
#include "vantor/binding.h"

namespace {

std::string shown(int32_t type, const void* value) {
  if (type == TAV_FLDT_STRING) return static_cast<const char*>(value);
  if (type == TAV_FLDT_INT) return std::to_string(*static_cast<const int32_t*>(value));
  const auto* poid = static_cast<const tav_poid_t*>(value);
  return std::to_string(tav_poid_get_db(poid)) + " " + tav_poid_get_type(poid) + " " +
         std::to_string(tav_poid_get_id(poid));
}

// The value of an entry, or the error's name.
std::string looked_up(const char* program, const char* key, int32_t type) {
  void* value = nullptr;
  int32_t error = -1;
  tav_conf(program, key, type, &value, &error);
  if (value == nullptr) return tav_taverr_to_str(error);
  std::string text = shown(type, value);
  tavi_client_put_cleanup(value, DD_FIELD_ID(type, 0), 0);
  return text;
}

// What was looked up, followed by the sentences of the CM's log.
std::string with_records(std::string records) {
  const std::string log = read_file("cm.tavlog");
  for (size_t at = 0; at < log.size();) {
    const size_t end = log.find('\n', at);
    records += " # " + after_words(log.substr(at, end - at), 5);
    at = end + 1;
  }
  return records;
}

TEST(Conf, GivesValues) {
  const std::string file =
      "\xEF\xBB\xBFuserid = 1.2.3.65535 /admin -9\r\n"
      "  indented=yes\n"
      "; a comment\n# another\n"
      "both = all\n"
      "empty =\n"
      "[dm]\nboth = mine\ndictionary = sqlite:a=b.db ; why\n"
      "[-]\nlate = 7\n[" +
      std::string(49, 's') + "]\n";
  const struct {
    const char* program;
    const char* key;
    int32_t type;
    const char* expected;
  } cases[] = {
      {"-", "userid", TAV_FLDT_POID, "281483566907391 /admin -9"},
      {"dm", "userid", TAV_FLDT_STRING, "1.2.3.65535 /admin -9"},
      {"-", "indented", TAV_FLDT_STRING, "yes"},
      {"-", "both", TAV_FLDT_STRING, "all"},
      {"dm", "both", TAV_FLDT_STRING, "mine"},
      {"DM", "both", TAV_FLDT_STRING, "all"},
      {"dm", "Both", TAV_FLDT_STRING, "TAV_ERR_NOT_FOUND"},
      {"dm", "dictionary", TAV_FLDT_STRING, "sqlite:a=b.db"},
      {"-", "dictionary", TAV_FLDT_STRING, "TAV_ERR_NOT_FOUND"},
      {"-", "empty", TAV_FLDT_STRING, ""},
      {"x", "late", TAV_FLDT_INT, "7"},
      {"x", "late", TAV_FLDT_ARRAY, "TAV_ERR_WRONG_TYPE"},
      {nullptr, "late", TAV_FLDT_INT, "TAV_ERR_BAD_ARG"},
      {"x", nullptr, TAV_FLDT_INT, "TAV_ERR_BAD_ARG"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(in_child([&] {
                write_file("tav.conf", file);
                return with_records(looked_up(c.program, c.key, c.type));
              }),
              c.expected)
        << c.program << " " << c.key;
  }
}

TEST(Conf, NamesWhatIsMalformed) {
  const char bad_id[] =
      "\"userid\" must be an object id, DATABASE TYPE ID, such as "
      "\"0.0.0.1 /admin 1\".";
  const char no_entry[] =
      "the line is neither a [section], nor an entry NAME = VALUE, nor a comment.";
  const char secret[] =
      "the file holds a password and others can read it; make it yours alone (chmod 600), or keep "
      "the password in PostgreSQL's own password file.";
  const struct {
    std::string file;
    const char* place;
    const char* sentence;
    int mode = 0644;
  } cases[] = {
      {"\nuserid =", ":2: ", bad_id},
      {"userid = 0.0.0.1 /admin", ":1: ", bad_id},
      {"userid = 0.0.0 /admin 1", ":1: ", bad_id},
      {"userid = 0.0.0.65536 /admin 1", ":1: ", bad_id},
      {"userid = 0.0.-1.1 /admin 1", ":1: ", bad_id},
      {"userid = 0.0.0.1 /admin 1 x", ":1: ", bad_id},
      {"userid = 0.0.0.1 /admin 9223372036854775808", ":1: ", bad_id},
      {"a = 1\nuserid\n", ":2: ", no_entry},
      {"a = 1\n\nuserid\n[dm\n", ":3: ", no_entry},
      {"= 1\n", ":1: ", "the entry has no name."},
      {"[dm\n", ":1: ", "the section's name is not closed by \"]\"."},
      {"[dm] a = 1\n",
       ":1: ", "the section's name is followed by something; entries begin on the next line."},
      {"[" + std::string(50, 's') + "]\n", ":1: ", "the section's name is too long."},
      {"a = 1\na = 2\n", ":2: ", "a stands already in line 1."},
      {"a = " + std::string(9000, 'x') + "\n", ":1: ", "the line is too long."},
      {std::string("a = 1\0\n", 7), ":1: ", "the line holds a NUL byte."},
      {std::string(2000000, '\n'), ": ", "the file is too large for a configuration."},
      {"[dm]\ndictionary = host=h password = x", ":2: ", secret},
      {"[dm]\ndictionary = postgresql://u:p@h/d", ":2: ", secret, 0604},
      {"userid = 0.0.0.1 /a 1\n[dm]\ndictionary = postgresql://h/d?password=p", ":3: ", secret,
       0640},
      {"a = 1\n[dm]\ndictionery = host=h password\v=x", ":3: ", secret},
      {"host = h\nPassword = x", ":2: ", secret},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(in_child([&] {
                write_file("tav.conf", c.file, c.mode);
                return with_records(looked_up("-", "userid", TAV_FLDT_POID));
              }),
              std::string("TAV_ERR_BAD_CONF # ./tav.conf") + c.place + c.sentence)
        << c.file.substr(0, 80);
  }
}

TEST(Conf, LeavesHarmlessDictionariesAlone) {
  for (const char* dictionary :
       {"postgresql://u@h:5432/d", "host=h passfile=p", "sqlite:password"}) {
    EXPECT_EQ(in_child([&] {
                write_file("tav.conf", std::string("dictionary = ") + dictionary, 0644);
                return looked_up("dm", "dictionary", TAV_FLDT_STRING);
              }),
              dictionary);
  }
  EXPECT_EQ(in_child([] {
              write_file("tav.conf", "dictionary = postgresql://u:p@h/d", 0600);
              return looked_up("dm", "dictionary", TAV_FLDT_STRING);
            }),
            "postgresql://u:p@h/d");
}

TEST(Conf, IsWhereTheEnvironmentSays) {
  EXPECT_EQ(in_child([] {
              std::filesystem::create_directory("sub");
              write_file("tav.conf", "a = here");
              write_file("sub/other.conf", "\na = there");
              setenv("TAV_CONF", "sub/other.conf", 1);
              return looked_up("-", "a", TAV_FLDT_STRING) + " " + tav_conf_file() + " " +
                     tav_conf_folder() + " " + std::to_string(tav_conf_line("x", "a")) +
                     std::to_string(tav_conf_line("x", "b"));
            }),
            "there sub/other.conf sub 20");
  EXPECT_EQ(in_child([] {
              write_file("tav.conf", "a = here");
              setenv("TAV_CONF", "absent.conf", 1);
              looked_up("-", "a", TAV_FLDT_STRING);
              return with_records(looked_up("-", "a", TAV_FLDT_STRING));
            }),
            "TAV_ERR_BAD_CONF # absent.conf: cannot be opened: No such file or directory; make it "
            "readable, or correct or unset the environment variable TAV_CONF.");
}

TEST(Conf, MayBeALinkButNoPipe) {
  const auto with_link_to = [](void (*make)(const char*)) {
    return in_child([make] {
      make("other.conf");
      std::filesystem::create_symlink("other.conf", "tav.conf");
      return with_records(looked_up("-", "a", TAV_FLDT_STRING));
    });
  };
  EXPECT_EQ(with_link_to([](const char* name) { write_file(name, "a = 1"); }), "1");
  EXPECT_EQ(with_link_to([](const char* name) { mkfifo(name, 0600); }),
            "TAV_ERR_BAD_CONF # ./tav.conf: is no regular file; put one there, or correct or unset "
            "the environment variable TAV_CONF.");
}

TEST(Conf, MayBeAbsent) {
  if (std::filesystem::exists("/etc/tav/tav.conf")) GTEST_SKIP() << "this machine has one";
  EXPECT_EQ(in_child([] {
              looked_up("-", "a", TAV_FLDT_STRING);
              return with_records(looked_up("-", "a", TAV_FLDT_STRING) + " " + tav_conf_file() +
                                  "." + tav_conf_folder());
            }),
            "TAV_ERR_NOT_FOUND .. # No tav.conf was found; write one to ./tav.conf or "
            "/etc/tav/tav.conf, or name one in the environment variable TAV_CONF.");
}

}  // namespace
