// Formatting as a process: exports, and files that are replaced.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>

#include "tests/tool/workshop.h"

namespace fs = std::filesystem;

static constexpr char UGLY[] = "INT A { ID = 20001; }\n";
static constexpr char PRETTY[] = "INT A {\n\tID = 20001;\n}\n";

// What is in the dictionary, in all ways in which it can be exported.
static void expect_exports_unchanged(const workshop& place, const std::vector<std::string>& ways) {
  std::vector<std::string> check{"dict", "format", "--check"};
  for (const std::string& way : ways) {
    const run_result exported = way == "field" ? place.run({"field"}) : place.run({"class", way});
    ASSERT_FALSE(exported.out.empty()) << way;
    place.write(way + ".def", exported.out);
    check.push_back("./" + way + ".def");
  }
  const run_result result = place.run(check);
  EXPECT_EQ(result.out + result.err, "");
  EXPECT_EQ(result.exit_status, 0);
}

TEST(format, leaves_exports_as_they_are) {
  const workshop place;
  std::vector<std::string> words{"create"};
  for (const auto& each : fs::directory_iterator(TAV_EXAMPLES)) {
    if (each.path().extension() != ".def") continue;
    place.write(each.path().filename(), slurp(each.path()));
    words.push_back(each.path().filename());
  }
  // Classes and entries about which an export says next to nothing.
  place.write("bare.def",
              "STORABLE CLASS /bare { ARRAY SHOP_FLD_LINES { ARRAY SHOP_FLD_DISCOUNTS { } } }\n"
              "STORABLE CLASS /bare IMPLEMENTATION TESSEL7 { SQL_TABLE = \"bare_t\"; ARRAY "
              "SHOP_FLD_LINES { SQL_TABLE = \"lines_t\"; ARRAY SHOP_FLD_DISCOUNTS { SQL_TABLE = "
              "\"cuts_t\"; } } }\nSTORABLE CLASS /bare/er { }\n");
  words.push_back("bare.def");
  ASSERT_EQ(place.run(words).exit_status, 0);
  std::vector<std::string> ways{"field"};
  for (unsigned set = 1; set < 32; ++set) {
    ways.emplace_back("-");
    for (unsigned i = 0; i < 5; ++i)
      if ((set >> i & 1) != 0) ways.back() += "nmscp"[i];
  }
  expect_exports_unchanged(place, ways);
}

TEST(format, leaves_exports_of_the_real_dictionary_as_they_are) {
  if (!fs::exists(TAV_REAL_DICTIONARY)) GTEST_SKIP() << "the real dictionary is not here";
  const workshop place;
  place.write("real.txt", slurp(TAV_REAL_DICTIONARY));
  ASSERT_EQ(place.run({"create", "real.txt"}).exit_status, 0);
  expect_exports_unchanged(place, {"field", "-n", "-m", "-nmscp"});
}

TEST(format, of_all_files_of_a_folder) {
  const workshop place;
  for (const char* folder : {"all/b", "all/a.def"}) fs::create_directories(place.path(folder));
  for (const char* name : {"all/z.def", "all/b/c.def", "all/a.def/d.def", "all/e.txt"})
    place.write(name, UGLY);
  fs::create_directory_symlink("..", place.path("all/b/loop"));
  fs::create_symlink("itself.def", place.path("all/itself.def"));
  ASSERT_EQ(::mkfifo(place.path("all/pipe.def").c_str(), 0600), 0);  // nobody would write to it
  const run_result all = place.run({"dict", "format", "--check", "all"});
  EXPECT_EQ(all.out, "all/a.def/d.def\nall/b/c.def\nall/z.def\n");
  EXPECT_EQ(all.err,
            "tav_dict: File 'all/itself.def' cannot be read: Too many levels of symbolic links.\n");
  EXPECT_EQ(all.exit_status, 2);
  fs::create_directory(place.path("empty"));
  EXPECT_EQ(place.run({"dict", "format", "empty"}).err,
            "tav_dict: Folder 'empty' holds no definition file (*.def).\n");
}

static struct stat status_of(const workshop& place, const std::string& name) {
  struct stat status {};
  EXPECT_EQ(::stat(place.path(name).c_str(), &status), 0);
  return status;
}

TEST(format, replaces_files_whole_and_keeps_their_group_and_mode) {
  const workshop place;
  const gid_t group = ::geteuid() == 0 ? 65534 : ::getegid();  // only root can give files away
  place.write("a.def", UGLY);
  ASSERT_EQ(::chown(place.path("a.def").c_str(), ::geteuid(), group), 0);
  ASSERT_EQ(::chmod(place.path("a.def").c_str(), 0640), 0);
  fs::create_symlink("a.def", place.path("link.def"));
  const ino_t before = status_of(place, "a.def").st_ino;
  const run_result result = place.run({"dict", "format", "-w", "link.def"});
  EXPECT_EQ(result.out + result.err, "");
  EXPECT_EQ(result.exit_status, 0);
  EXPECT_TRUE(fs::is_symlink(place.path("link.def")));
  EXPECT_EQ(place.read("a.def"), PRETTY);
  const struct stat written = status_of(place, "a.def");
  EXPECT_EQ(written.st_mode & 07777, 0640u);
  EXPECT_EQ(written.st_gid, group);
  EXPECT_NE(written.st_ino, before);
  EXPECT_EQ(place.run({"dict", "format", "-w", "a.def"}).exit_status, 0);
  EXPECT_EQ(status_of(place, "a.def").st_ino, written.st_ino);
}

// A file that is left as it is, with nothing beside it, and one that is done all the same.
static void expect_left(const workshop& place, const run_result& result, const std::string& why) {
  EXPECT_EQ(result.err, "tav_dict: File 'a.def' is left as it is: " + why + ".\n");
  EXPECT_EQ(result.exit_status, 2);
  EXPECT_EQ(place.read("b.def"), PRETTY);
  for (const auto& each : fs::directory_iterator(place.path(".")))
    EXPECT_FALSE(each.path().filename().string().starts_with(".tav_dict")) << each.path();
}

TEST(format, leaves_files_that_cannot_be_replaced) {
  const workshop place;
  place.write("a.def", UGLY);
  place.write("b.def", UGLY);
  fs::create_hard_link(place.path("a.def"), place.path("c.txt"));
  expect_left(place, place.run({"dict", "format", "-w", "a.def", "b.def"}),
              "it has several names (hard links), of which only one would change");
  EXPECT_EQ(place.read("c.txt"), UGLY);
}

TEST(format, leaves_files_that_are_mount_points) {
  const workshop place;
  for (const char* name : {"a.def", "b.def"}) place.write(name, UGLY);
  run_options other;
  other.program = "/usr/bin/unshare";
  const auto run = [&](const std::string& line) {
    return place.run({"-rm", "sh", "-c", "mount --bind a.def a.def && " + line}, other);
  };
  if (run("true").exit_status != 0) GTEST_SKIP() << "here nobody may mount anything";
  expect_left(place, run("'" TAV_DICT "' format -w a.def b.def"), "Device or resource busy");
  EXPECT_EQ(place.read("a.def"), UGLY);
}

TEST(format, leaves_files_whose_owner_cannot_be_kept) {
  if (::geteuid() != 0) GTEST_SKIP() << "only root can give files away";
  const workshop place;
  for (const char* name : {"a.def", "b.def"}) {
    place.write(name, UGLY);
    ASSERT_EQ(::chmod(place.path(name).c_str(), 0666), 0);
    ASSERT_EQ(::chown(place.path(name).c_str(), *name == 'a' ? 1 : 65534, 65534), 0);
  }
  ASSERT_EQ(::chmod(place.path(".").c_str(), 0777), 0);
  run_options other;
  other.program = "/usr/bin/setpriv";
  const run_result result = place.run({"--reuid=65534", "--regid=65534", "--clear-groups", TAV_DICT,
                                       "format", "-w", "a.def", "b.def"},
                                      other);
  expect_left(place, result, "its owner and group cannot be kept");
  EXPECT_EQ(place.read("a.def"), UGLY);
}

TEST(format, leaves_files_whole_where_the_new_one_cannot_be_written) {
  const workshop place;
  std::string large;
  for (int i = 0; i < 1000; ++i) large += UGLY;
  place.write("a.def", large);
  place.write("b.def", UGLY);
  run_options shell;
  shell.program = "/bin/sh";
  const run_result result =
      place.run({"-c", "ulimit -f 8; exec '" TAV_DICT "' format -w a.def b.def"}, shell);
  expect_left(place, result, "File too large");
  EXPECT_EQ(place.read("a.def"), large);
}

// What is committed counts, not what stands in the folder.
TEST(format, is_asked_before_a_commit) {
  const workshop place;
  run_options shell;
  shell.program = "/bin/bash";
  const auto run = [&](const std::string& line) {
    return place.run(
        {"-c", "PATH=" + fs::path(TAV_DICT).parent_path().string() + ":$PATH; " + line}, shell);
  };
  if (run("git init -q .").exit_status != 0) GTEST_SKIP() << "git is not here";
  place.write("good one.def", PRETTY);
  place.write("bad.def", UGLY);
  ASSERT_EQ(run("git add 'good one.def'").exit_status, 0);
  const std::string hook = TAV_EXAMPLES "/pre-commit.sh";
  EXPECT_EQ(run(hook).out, "");
  EXPECT_EQ(run(hook).exit_status, 0);
  ASSERT_EQ(run("git add bad.def && tav_dict format -w bad.def").exit_status, 0);
  EXPECT_EQ(run(hook).out, "bad.def\n");
  EXPECT_EQ(run(hook).exit_status, 1);
}
