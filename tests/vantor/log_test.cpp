#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <regex>

#include "dd/values.h"
#include "in_child.h"
#include "vantor/binding.h"
#include "vantor/log/log_text.h"

namespace {

constexpr char LOG[] = "tav_deploy.tavlog";

TEST(Log, WritesRecords) {
  const std::string log = in_child([] {
    tav_err_log_msg(1, "100%s\nFAKE record\n\x1b[0m\xc2\x9b\xff\t\xc2\xa0\n", "dparse", 12);
    tav_err_log_msg(3, "not shown", "dparse", 13);
    struct stat found;
    stat(LOG, &found);
    return read_file(LOG) + std::to_string(found.st_mode & 0777 & ~0640u);
  });
  const std::regex form(
      "[0-9]{4}-[0-9]{2}-[0-9]{2}T[0-9]{2}:[0-9]{2}:[0-9]{2}\\.[0-9]{3}Z [^ ]+ "
      "test_vantor\\[[0-9]+\\] 1 dparse:12 100%s\n"
      "    FAKE record\n"
      "    \\\\x1b\\[0m\\\\u009b\\\\xff\t\xc2\xa0\n0");
  EXPECT_TRUE(std::regex_match(log, form)) << log;
}

TEST(Log, ShowsErrorBuffers) {
  EXPECT_EQ(after_words(in_child([] {
                          tav_ebuf ebuf{2, 1, 6, TAV_FLD_NAME, 3, -4, 55, "deploy"};
                          tav_err_log_ebuf(1, "Flist error", "dparse", 7, &ebuf);
                          return read_file(LOG);
                        }),
                        3),
            "1 dparse:7 Flist error\n"
            "  location = 2 TAV_ERRLOC_LIST\n"
            "  class = 1 TAV_ERRCLASS_REQUEST\n"
            "  errno = 6 TAV_ERR_WRONG_TYPE\n"
            "  field = 5,17 TAV_FLD_NAME\n"
            "  rec_id = 3\n"
            "  reserved = -4\n"
            "  line_no = 55\n"
            "  filename = deploy\n");
}

TEST(Log, ShowsLists) {
  EXPECT_EQ(after_words(in_child([] {
                          dd_flist list(tav_flist_create(nullptr));
                          tav_ebuf e{};
                          tav_flist_t* a = tav_flist_elem_add(list.get(), TAV_FLD_OBJ_DESC, -3, &e);
                          dd_set_text(a, TAV_FLD_NAME, "/a\nb \\n\t\x01\xc3\xa4\xc2\x80\xc3", &e);
                          const std::string wide(600, 'w');  // what follows is put behind it
                          dd_set_text(a, TAV_FLD_DESCR, wide.c_str(), &e);
                          dd_set_int(a, DD_FIELD_ID(TAV_FLDT_INT, 12), -7, &e);
                          tav_flist_elem_add(a, TAV_FLD_OBJ_ELEM, 0, &e);
                          tav_flist_t* b = tav_flist_elem_add(a, TAV_FLD_OBJ_ELEM, 1, &e);
                          dd_set_text(b, TAV_FLD_LABEL, "old", &e);
                          dd_put(b, TAV_FLD_ORDER, 0, dd_decimal(tav_decimal("1.50", &e)), &e);
                          tavi_flist_drop(b, TAV_FLD_LABEL, 0, &e);
                          dd_set_text(b, TAV_FLD_LABEL, "in its place", &e);
                          const double half = 0.5;
                          tavi_flist_set(b, DD_FIELD_ID(TAV_FLDT_NUM, 9), 0, 0, &half, &e);
                          dd_put(list.get(), TAV_FLD_POID, 0,
                                 dd_poid(tav_poid_create(65537, "/t", -1, &e)), &e);
                          unsigned char bytes[] = {0, 0xab};
                          const tav_buf_t buf{2, bytes};
                          const uint32_t binary = DD_FIELD_ID(TAV_FLDT_BINSTR, 1);
                          tavi_flist_set(list.get(), binary, 0, 0, &buf, &e);
                          const uint32_t part = DD_FIELD_ID(TAV_FLDT_SUBSTRUCT, 2);
                          tavi_flist_set(list.get(), part, 0, 0, b, &e);
                          tav_err_set_level(3);
                          tav_log_flist(3, "input", "m", 1, list.get());
                          return read_file(LOG);
                        }),
                        3),
            "3 m:1 input\n"
            "  TAV_FLD_OBJ_DESC[-3]\n"
            "    TAV_FLD_NAME = /a\\nb \\\\n\\t\\x01\xc3\xa4\\u0080\\xc3\n"
            "    TAV_FLD_DESCR = " +
                std::string(600, 'w') +
                "\n"
                "    INT 12 = -7\n"
                "    TAV_FLD_OBJ_ELEM[0]\n"
                "    TAV_FLD_OBJ_ELEM[1]\n"
                "      TAV_FLD_LABEL = in its place\n"
                "      TAV_FLD_ORDER = 1.50\n"
                "      NUM 9 = 0.5\n"
                "  TAV_FLD_POID = 0.0.1.1 /t -1\n"
                "  BINSTR 1 = 2 bytes 00ab\n"
                "  SUBSTRUCT 2\n"
                "    TAV_FLD_LABEL = in its place\n"
                "    TAV_FLD_ORDER = 1.50\n"
                "    NUM 9 = 0.5\n");
}

TEST(Log, TellsTheLevelOfDeepEntries) {
  const std::string log = in_child([] {
    dd_flist list(tav_flist_create(nullptr));
    tav_flist_t* at = list.get();
    for (int i = 0; i < 10000; ++i) at = tav_flist_elem_add(at, TAV_FLD_OBJ_ELEM, i, nullptr);
    tav_log_flist(1, "deep", "m", 1, list.get());
    return read_file(LOG);
  });
  const std::string deepest = "\n" + std::string(78, ' ') + "TAV_FLD_OBJ_ELEM[38]\n" +
                              std::string(80, ' ') + "(level 40) TAV_FLD_OBJ_ELEM[39]\n";
  EXPECT_NE(log.find(deepest), log.npos);
  const std::string last = std::string(80, ' ') + "(level 10000) TAV_FLD_OBJ_ELEM[9999]\n";
  EXPECT_EQ(log.substr(log.size() - last.size()), last);
}

TEST(Log, IsConfigured) {
  const struct {
    const char* conf;
    const char* file;
    int records;         // of one at level 1 and one at level 3
    int32_t level = -1;  // what the program sets before the file is read
  } cases[] = {
      {"a = 1", LOG, 1},
      {"log_level = 3", LOG, 2},
      {"log_dir = logs", "logs/tav_deploy.tavlog", 1},
      {"log_level = 1\nlog_dir =\n[test_vantor]\nlog_level = 3", LOG, 2},
      {"log_level = 2", LOG, 1},
      {"log_level = 2", "cm.tavlog", 1},
      {"log_level = 1", LOG, 2, 3},
      {"log_level = 3", LOG, 1, 1},
      {"log_dir = nowhere", LOG, 0},
      {"a =\nlog_dir", LOG, 1},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(in_child([&] {
                std::filesystem::create_directory("logs");
                write_file("tav.conf", c.conf);
                if (c.level >= 0) tav_err_set_level(c.level);
                tav_err_log_msg(1, "one", "m", 1);
                tav_err_log_msg(3, "three", "m", 1);
                const std::string log = read_file(c.file);
                return std::to_string(std::count(log.begin(), log.end(), '\n'));
              }),
              std::to_string(c.records))
        << c.conf;
  }
}

TEST(Log, IsAFileOfItsOwn) {
  EXPECT_EQ(in_child([] {
              write_file("precious", "kept");
              std::filesystem::create_symlink("precious", LOG);
              std::filesystem::create_symlink("nothing", "cm.tavlog");
              mkfifo("dm.tavlog", 0600);
              const int reader = open("dm.tavlog", O_RDWR | O_NONBLOCK);
              tav_err_log_msg(1, "one", "m", 1);
              tav_component_log(tav_component::CM, 1, "two", {"m", 1});
              tav_component_log(tav_component::DM, 1, "three", {"m", 1});
              char byte;
              const bool is_piped = read(reader, &byte, 1) == 1;
              return read_file("precious") + (is_piped ? " piped" : "") + read_file("nothing");
            }),
            "kept");
}

TEST(Log, OfRootIsWrittenWhereNobodyElseMayWrite) {
  const auto told = [](mode_t mode, uid_t owner, gid_t group) {
    return in_child([=] {
      std::filesystem::create_directory("logs");
      write_file("tav.conf", "log_dir = logs");
      if (chown("logs", owner, group) != 0 || chmod("logs", mode) != 0) return std::string("?");
      if (freopen("err", "w", stderr) == nullptr) return std::string("?");
      tav_err_log_msg(1, "one", "m", 1);
      tav_component_log(tav_component::CM, 1, "two", {"m", 1});
      std::fflush(stderr);
      const bool is_written = std::filesystem::exists(std::string("logs/") + LOG);
      return read_file("err") + (is_written ? "written" : "");
    });
  };
  if (geteuid() != 0) GTEST_SKIP() << "for root alone";
  const char refused[] =
      "test_vantor: No log is written: others than root may write in its folder './logs'. Name one "
      "for root alone with log_dir in tav.conf.\n";
  EXPECT_EQ(told(0755, 0, 65534), "written");
  EXPECT_EQ(told(0775, 0, 0), "written");
  EXPECT_EQ(told(0775, 0, 65534), refused);
  EXPECT_EQ(told(01777, 0, 0), refused);
  EXPECT_EQ(told(0755, 65534, 0), refused);
}

TEST(Log, ThatCannotBeWrittenStopsNobody) {
  EXPECT_EQ(in_child([] {
              alarm(20);
              signal(SIGXFSZ, SIG_IGN);
              const rlimit nothing{};
              setrlimit(RLIMIT_FSIZE, &nothing);
              tav_err_log_msg(1, "lost", "m", 1);
              return "went on" + read_file(LOG);
            }),
            "went on");
}

TEST(Log, TellsTimesBefore1970) {
  std::string times;
  for (const int milliseconds : {-39, -1000, 0, 1001}) {
    vantor::append_time(times, std::chrono::milliseconds(milliseconds));
  }
  EXPECT_EQ(times,
            "1969-12-31T23:59:59.961Z1969-12-31T23:59:59.000Z"
            "1970-01-01T00:00:00.000Z1970-01-01T00:00:01.001Z");
}

TEST(Log, RecordsOfProcessesNeverMix) {
  const std::string log = in_child([] {
    for (int child = 0; child < 3; ++child) {
      if (fork() != 0) continue;
      const std::string message(200, static_cast<char>('a' + child));
      for (int i = 0; i < 20; ++i) {
        tav_component_log(tav_component::DM, 1, message.c_str(), {"m", child});
      }
      _exit(0);
    }
    while (wait(nullptr) > 0) {
    }
    return read_file("dm.tavlog");
  });
  EXPECT_TRUE(std::regex_match(log, std::regex("([^ ]+ [^ ]+ [^ ]+ 1 m:(0 a+|1 b+|2 c+)\n){60}")));
}

}  // namespace
