// The tool as a process: bad input, bad surroundings, and whole dictionaries there and back.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <random>
#include <sstream>

#include "tests/tool/workshop.h"

namespace fs = std::filesystem;
using words = std::vector<std::string>;

static std::string random_bytes(size_t count) {
  std::mt19937 chance(7);
  std::string bytes(count, '\0');
  for (char& byte : bytes) byte = static_cast<char>(chance());
  return bytes;
}

// Definition files that no reader can do anything with: one clear line, no crash, bounded memory.
TEST(bad_input, is_one_clear_error) {
  const std::string full_word(2047, 'w');
  const struct {
    const char* title;
    std::string text;
    std::string err;  // "%" stands for the rest of the line
  } rows[] = {
      {"random bytes", random_bytes(100000), "Error: in a.def at line %"},
      {"100 MB without a newline", std::string(100u << 20, 'x'),
       "Error: in a.def at line 1: Buffer overflow, tokens are limited to 2048 characters\n"},
      {"100 MB of one string", "STRING F { DESCR = \"" + std::string(100u << 20, 'x'),
       "Error: in a.def at line 1: Expecting \"\n"},
      {"a word of 2047 characters", "STRING " + full_word + " { ID = 20001; } ?",
       "Error: in a.def at line 1: Buffer overflow, tokens are limited to 2048 characters\n"},
      {"a word of 2046 characters", "STRING " + full_word.substr(1) + " { ID = 20001; } ?",
       "Error: in a.def at line 1: Invalid token '?'\n"},
      {"a null byte", std::string("STRING F { ID = 2\0 1; }", 23), "Error: in a.def at line 1: %"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.title);
    const workshop place;
    place.write("a.def", row.text);
    const run_result result = place.run({"verify", "a.def"});
    EXPECT_EQ(result.exit_status, 1);
    const size_t cut = row.err.find('%');
    EXPECT_EQ(result.err.substr(0, cut), row.err.substr(0, cut));
  }
}

TEST(bad_input, that_cannot_be_read_is_no_success) {
  const workshop place;
  fs::create_directory(place.path("folder"));
  const run_result folder = place.run({"verify", "folder"});
  EXPECT_EQ(folder.err, "Error: Unable to open file: folder\n");
  EXPECT_EQ(folder.exit_status, 1);
  run_options input;
  input.input = "folder";
  EXPECT_EQ(place.run({"verify"}, input).exit_status, 1);
}

// Nesting is refused by the rules, however deep; the reader itself goes down all the way.
TEST(bad_input, nested_ten_thousand_levels_deep) {
  const workshop place;
  std::string open, close;
  for (int i = 0; i < 10000; ++i) {
    open += "ARRAY TAV_FLD_ARGS { ";
    close += "} ";
  }
  place.write("a.def", "STORABLE CLASS /a { " + open + close +
                           "}\nSTORABLE CLASS /a IMPLEMENTATION "
                           "TESSEL7 { SQL_TABLE = \"t\"; " +
                           open + close + "}\n");
  const run_result result = place.run({"verify", "a.def"});
  EXPECT_EQ(result.exit_status, 1);
  EXPECT_EQ(result.out, "\nErrors Detected...nothing committed\n");
}

TEST(command_line, more_names_than_fit_is_refused_with_the_usage) {
  const workshop place;
  words many{"verify"};
  many.insert(many.end(), 2049, "a.def");
  const run_result result = place.run(many);
  EXPECT_EQ(result.exit_status, 1);
  EXPECT_EQ(result.err.substr(0, 8), "Usage: \n");
  EXPECT_EQ(result.log, "tav_deploy Invalid command line args\n");
}

TEST(command_line, usage_has_the_name_by_which_the_tool_was_called) {
  run_options renamed;
  renamed.program = "/bin/bash";
  const run_result result = workshop().run({"-c", "exec -a roll_out '" TAV_DEPLOY "' -x"}, renamed);
  EXPECT_EQ(result.err.substr(0, result.err.find(" [")), "Usage: \n\troll_out class");
}

// An export that cannot be written to the end must not look like one that could.
TEST(output, that_cannot_be_written_fails_the_export) {
  const workshop place;
  run_options full;
  full.output = "/dev/full";
  const run_result fields = place.run({"field"}, full);
  EXPECT_EQ(fields.exit_status, 1);
  EXPECT_EQ(fields.err, "Error: attempting to export fields to stdout\n");
  place.write("a.def",
              "STORABLE CLASS /a { }\nSTORABLE CLASS /a IMPLEMENTATION TESSEL7 "
              "{ SQL_TABLE = \"t\"; }\n");
  ASSERT_EQ(place.run({"create", "a.def"}).exit_status, 0);
  EXPECT_EQ(place.run({"class"}, full).err,
            "Error: attempting to export class definitions to stdout\n");
  EXPECT_EQ(place.run({"class", "-m"}, full).err, "Error: attempting to export fields to stdout\n");
}

// The surroundings are broken in one way each: an error display that points to a tavlog, a sentence
// there that names the trouble, exit status 1, and the dictionary as it was.
struct trouble {
  const char* title;
  const char* tavlog;    // "cm" or "dm"
  const char* sentence;  // part of it
  void (*make)(const workshop&);
};

static void configure(const workshop& place, const std::string& text) {
  place.write("tav.conf",
              "userid = 0.0.0.1 /admin 1\n[dm]\nfields_writeable = yes\n"
              "objects_writeable = yes\n" +
                  text);
}

static const trouble TROUBLES[] = {
    {"no userid", "cm", "userid",
     [](const workshop& place) { place.write("tav.conf", "[dm]\nfields_writeable = yes\n"); }},
    {"no tav.conf", "cm", "tav.conf",
     [](const workshop& place) { fs::remove(place.path("tav.conf")); }},
    {"a broken tav.conf", "cm", "tav.conf:2",
     [](const workshop& place) {
       place.write("tav.conf", "userid = 0.0.0.1 /admin 1\nwhat is this\n");
     }},
    {"no dictionary", "cm", "missing.db",
     [](const workshop& place) { configure(place, "dictionary = sqlite:missing.db\n"); }},
    {"a dictionary that is none", "cm", "dictionary.db",
     [](const workshop& place) { place.write("dictionary.db", random_bytes(20000)); }},
    {"another schema version", "cm", "version",
     [](const workshop& place) {
       run_options change;
       change.program = SQLITE3;
       place.run({"dictionary.db", "PRAGMA user_version = 999"}, change);
     }},
};

TEST(surroundings, that_are_broken_are_explained) {
  for (const trouble& row : TROUBLES) {
    SCOPED_TRACE(row.title);
    const workshop place;
    place.write("a.def", "STRING F { ID = 20001; }\n");
    row.make(place);
    const std::string before = slurp(place.path("dictionary.db"));
    for (const words& run : {words{"field"}, words{"class"}, words{"verify", "a.def"},
                             words{"create", "a.def"}, words{"replace", "a.def"}}) {
      SCOPED_TRACE(run[0]);
      const run_result result = place.run(run);
      EXPECT_EQ(result.exit_status, 1);
      EXPECT_NE(result.err.find("Please check the CM tavlog file"), std::string::npos)
          << result.err;
    }
    EXPECT_EQ(slurp(place.path("dictionary.db")), before);
    EXPECT_FALSE(fs::exists(place.path("missing.db")));
    EXPECT_NE(slurp(place.path(std::string(row.tavlog) + ".tavlog")).find(row.sentence),
              std::string::npos)
        << slurp(place.path(std::string(row.tavlog) + ".tavlog"));
  }
}

// --- Whole dictionaries. What an export loses, by contract; the round trips hold without these:
//   CREATE_ACCESS and RESIDENCY_TYPE of a class; LDAP implementations (merging drops them too);
//   SQL_STORAGE of a field that has a column; a double quote inside a text; the implementation's
//   name.

static void copy_examples(const workshop& place) {
  for (const auto& file : fs::directory_iterator(TAV_EXAMPLES)) {
    place.write(file.path().filename().string(), slurp(file.path()));
  }
}

// Deploys the files, exports all, deploys the export elsewhere, and replaces it with itself.
static void there_and_back(const workshop& first, const words& files) {
  words create{"create"};
  create.insert(create.end(), files.begin(), files.end());
  const run_result created = first.run(create);
  ASSERT_EQ(created.exit_status, 0) << created.err;
  ASSERT_EQ(created.err, "");
  ASSERT_EQ(
      created.out,
      "No Conflicts detected\nFields committed successfully!\nClasses committed successfully!\n");
  const std::string exported = first.run({"class", "-nmcp"}).out;
  ASSERT_NE(exported, "");
  create.front() = "diff";
  create.insert(create.begin(), "dict");
  EXPECT_EQ(first.run(create).out, "No differences.\n");

  const workshop second;
  std::string line;
  second.write("export.def", exported);
  // The predefined fields that the classes use are in every dictionary already.
  const run_result again = second.run({"create", "export.def"});
  ASSERT_EQ(again.exit_status, 0) << again.err;
  for (std::istringstream lines(again.err); std::getline(lines, line);) {
    EXPECT_EQ(line.rfind("Warning: Duplicate field definition TAV_FLD_", 0), 0u) << line;
  }
  EXPECT_EQ(second.run({"class", "-nmcp"}).out, exported);
  EXPECT_EQ(first.run({"dict", "diff", second.path("export.def")}).out, "No differences.\n");
  const run_result replaced = second.run({"replace", "export.def"});
  EXPECT_EQ(replaced.exit_status, 0);
  EXPECT_EQ(replaced.out.substr(0, 62),
            "\nWarning: Conflicts Detected...attempting to commit/replace\nFi");
  EXPECT_EQ(second.run({"class", "-nmcp"}).out, exported);
}

TEST(round_trip, of_the_examples) {
  const workshop place;
  copy_examples(place);
  there_and_back(place, {"fields.def", "subscribers.def", "devices.def", "orders.def"});
}

TEST(round_trip, of_fields_alone) {
  const workshop first, second;
  first.write("a.def", slurp(fs::path(TAV_EXAMPLES) / "fields.def"));
  ASSERT_EQ(first.run({"create", "a.def"}).exit_status, 0);
  const std::string exported = first.run({"field", "-c"}).out;
  second.write("a.def", exported);
  ASSERT_EQ(second.run({"create", "a.def"}).exit_status, 0);
  EXPECT_EQ(second.run({"field", "-c"}).out, exported);
}

TEST(round_trip, of_a_real_dictionary) {
  if (!fs::exists(TAV_REAL_DICTIONARY)) GTEST_SKIP() << "the real dictionary is not here";
  const workshop place;
  place.write("real.def", slurp(TAV_REAL_DICTIONARY));
  const run_result verified = place.run({"verify", "real.def"});
  EXPECT_EQ(verified.out, "No Conflicts detected\n");
  there_and_back(place, {"real.def"});
}

static run_result shell(const workshop& place, const std::string& program, words arguments) {
  run_options options;
  options.program = program;
  options.env = {"PATH=" + fs::path(TAV_DICT).parent_path().string() + ":/usr/bin:/bin"};
  return place.run(std::move(arguments), options);
}

TEST(examples, tell_a_pipeline_what_is_to_be_done) {
  const workshop place;
  copy_examples(place);
  const auto ci = [&](words files) {
    return shell(place, TAV_EXAMPLES "/ci.sh", files).exit_status;
  };
  EXPECT_EQ(ci({"plan", "a.plan", "fields.def"}), 1);
  EXPECT_EQ(ci({"apply", "a.plan"}), 0);
  EXPECT_EQ(ci({"plan", "b.plan", "fields.def"}), 0);
  EXPECT_EQ(ci({"plan", "b.plan", "fields.def", "none.def"}), 2);
  // Annotations: what is wrong, and no word of the fields that are there already.
  place.write("fields.def", place.read("fields.def") + "INT X { ID = ; }\n");
  const run_result annotated =
      shell(place, "/usr/bin/env",
            {"GITHUB_ACTIONS=true", TAV_EXAMPLES "/ci.sh", "plan", "a.plan", "fields.def"});
  EXPECT_EQ(annotated.out.rfind("::error file=fields.def,line=117,", 0), 0u) << annotated.out;
  EXPECT_EQ(std::count(annotated.out.begin(), annotated.out.end(), '\n'), 1) << annotated.out;
  shell(place, "/usr/bin/env",
        {"GITLAB_CI=true", TAV_EXAMPLES "/ci.sh", "plan", "a.plan", "fields.def"});
  EXPECT_NE(place.read("gl-code-quality-report.json").find("\"begin\": 117"), std::string::npos);
  ASSERT_TRUE(fs::remove(place.path("gl-code-quality-report.json")));
  ASSERT_TRUE(fs::create_directory(place.path("gl-code-quality-report.json")));
  const run_result unwritten =
      shell(place, "/usr/bin/env",
            {"GITLAB_CI=true", TAV_EXAMPLES "/ci.sh", "plan", "a.plan", "fields.def"});
  EXPECT_NE(unwritten.err.find("gl-code-quality-report.json"), std::string::npos);
}

TEST(progress, is_drawn_on_a_terminal_and_taken_away) {
  const char job[] = "(sleep 3; echo 'INT F { ID = 20001; }') | tav_dict diff";
  const std::string out = shell(workshop(), "/usr/bin/script", {"-qec", job, "/dev/null"}).out;
  EXPECT_NE(out.find("\r\033[Kcomparing fields 1 of "), out.npos) << out;
  EXPECT_NE(out.find("\r\033[K\033[32m+ field F (INT)\033[0m\r\n"), out.npos) << out;
}

// What names and descriptions hold is no order to a terminal; elsewhere it stays what it is.
TEST(terminal, gets_texts_made_visible) {
  const workshop place;
  const std::string name = "\x1b[31m\xc2\x9b\xff\n\t\xc3\xa4.def";
  const std::string shown = "\\x1b[31m\\u009b\\xff\\n\\t\xc3\xa4.def";
  place.write("a.def",
              "INT F { ID = 20001; DESCR = \"\xc2\x9b\"; }\nINT \xc2\x85 { ID = 20002; }\n");
  ASSERT_EQ(place.run({"create", "a.def"}).exit_status, 0);
  const struct {
    words command;
    std::string piped, on_terminal;  // parts of what is printed
  } rows[] = {
      {{"verify", name}, "open file: " + name + "\n", "open file: " + shown + "\r\n"},
      {{"field", "-\x9b"}, "switch '\x9b'\nUsage: \n\t", "switch '\\x9b'\r\nUsage: \r\n\t"},
      {{"replace", "a.def"}, "definition \xc2\x85, rep", "definition \\u0085, rep"},
      {{"dict", "diff", "-d", name},
       "'?[31m\xc2\x9b\xff??\xc3\xa4.def'",
       "'?[31m\\u009b\\xff??\xc3\xa4"},
      {{"dict", "diff", "--color", name}, name + " not in", "[31m\\u009b\\xff"},
      {{"dict", "diff", "--missing", "/dev/null"}, "- field \xc2\x85", "- field \\u0085"},
      {{"dict", "diff", "--missing", "--json", "/dev/null"}, "\"\xc2\x85\"", "\"\\u0085\""},
      {{"field", "F"}, "\"\xc2\x9b\"", "\"\xc2\x9b\""},
  };
  for (const auto& row : rows) {
    const run_result piped = place.run(row.command);
    EXPECT_NE((piped.out + piped.err).find(row.piped), std::string::npos) << piped.out + piped.err;
    const bool dict = row.command[0] == "dict";
    std::string job = dict ? "tav_dict" : "tav_deploy";
    for (size_t i = dict; i < row.command.size(); ++i) job += " '" + row.command[i] + "'";
    const std::string out = shell(place, "/usr/bin/script", {"-qec", job, "/dev/null"}).out;
    EXPECT_NE(out.find(row.on_terminal), std::string::npos) << out;
  }
}
