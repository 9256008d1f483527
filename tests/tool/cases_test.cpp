// Runs the case files: definition files and command lines, with what the tool must print, log and
// end with. The form of a case file is told in cases/README.md.
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <map>
#include <set>
#include <sstream>

#include "deploy/findings.h"
#include "tests/tool/sources.h"
#include "tests/tool/workshop.h"

namespace fs = std::filesystem;

struct step {
  std::vector<std::string> words;
  run_options options;
  std::map<std::string, std::string> expected;  // out, err, log, exit
};

struct test_case {
  std::string title;
  int line = 0;
  std::vector<std::pair<std::string, std::string>> files;
  std::vector<step> steps;
};

static step new_step(const std::string& arguments) {
  step made;
  std::istringstream words(arguments);
  if (arguments.rfind("sqlite3 ", 0) == 0) words >> made.options.program;
  for (std::string word; words >> word;) {
    if (word == "<") {
      words >> made.options.input;
    } else {
      made.words.push_back(word == "''" ? "" : word);
    }
  }
  return made;
}

// Where the text of the section that a line opens goes; null for a section that has none.
static std::string* open_section(test_case& c, const std::string& kind, const std::string& rest) {
  if (kind == "file") return &c.files.emplace_back(rest, "").second;
  if (kind == "run") {
    c.steps.push_back(new_step(rest));
    return nullptr;
  }
  if (c.steps.empty()) throw std::runtime_error("=== " + kind + " before the first run");
  std::string& text = c.steps.back().expected[kind];
  text = rest;
  return kind == "exit" ? nullptr : &text;
}

static void add_line(std::string& text, std::string line) {
  const bool open = !line.empty() && line.back() == '\\';
  if (open) line.pop_back();
  text += open ? line : line + "\n";
}

static std::vector<test_case> read_cases(const fs::path& path) {
  std::vector<test_case> cases;
  std::ifstream in(path, std::ios::binary);
  std::string* section = nullptr;
  int number = 0;
  for (std::string line; std::getline(in, line);) {
    ++number;
    if (line.rfind("=== ", 0) != 0) {
      if (section != nullptr) add_line(*section, line);
      continue;
    }
    std::istringstream words(line.substr(4));
    std::string kind, rest;
    words >> kind;
    std::getline(words >> std::ws, rest);
    if (kind == "case") {
      cases.emplace_back().title = rest;
      cases.back().line = number;
      section = nullptr;
    } else {
      section = open_section(cases.back(), kind, rest);
    }
  }
  return cases;
}

static std::vector<std::string> lines_of(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  if (!text.empty() && text.back() != '\n') lines.back() += "<no newline>";
  return lines;
}

// Whether the lines are the expected ones; "..." stands for any number of lines.
static bool matches(const std::vector<std::string>& expected, size_t e,
                    const std::vector<std::string>& lines, size_t l) {
  for (; e < expected.size() && expected[e] != "..."; ++e, ++l) {
    if (l >= lines.size() || lines[l] != expected[e]) return false;
  }
  if (e == expected.size()) return l == lines.size();
  for (; l <= lines.size(); ++l) {
    if (matches(expected, e + 1, lines, l)) return true;
  }
  return false;
}

static void compare(const char* what, const std::string& expected, const std::string& text) {
  if (matches(lines_of(expected), 0, lines_of(text), 0)) return;
  EXPECT_EQ(expected, text) << what;
}

// --- Every import is preceded by a diff, which must agree with it -------------------------------

struct diff_result {
  int exit_status;
  std::string refused;  // "" where nothing was compared
};

static diff_result diff(const workshop& place, const step& s) {
  std::vector<std::string> words{"dict", "diff", "--json"};
  words.insert(words.end(), s.words.begin() + 1, s.words.end());
  const run_result result = place.run(words, s.options);
  std::smatch refused;
  std::regex_search(result.out, refused, std::regex("\"refused\": (\\w+)"));
  return {result.exit_status, refused[1]};
}

static std::string exported(const workshop& place) {
  return place.run({"field"}).out + place.run({"class", "-m"}).out;
}

static run_result run_import(const workshop& place, const step& s) {
  static const std::regex unread(
      "import files|without interface|implementation was provided|between interface/impl");
  const auto [told, refused] = diff(place, s);
  const std::string before = exported(place);
  const run_result result = place.run(s.words, s.options);
  const auto says = [text = result.out + result.err + result.log](const char* part) {
    return text.find(part) != text.npos;
  };
  EXPECT_EQ(told == 2, std::regex_search(result.err + result.log, unread));
  EXPECT_EQ(refused == "false", told != 2 && !says("Errors Detected")) << "diff tells refusals";
  EXPECT_EQ(refused == "null", says("write flags not set")) << "but not whose fault a place is";
  EXPECT_TRUE(told == 1 || !says("Error: Conflicting field"));
  if (says("committed successfully")) {
    EXPECT_EQ(told == 1, exported(place) != before) << "diff tells whether anything changes";
    const diff_result again = diff(place, s);
    EXPECT_EQ(again.exit_status, 0) << "nothing is left to deploy";
    EXPECT_EQ(again.refused, "false");
  } else if (says("No Conflicts") && !says("keeping old")) {
    EXPECT_EQ(told, 1) << "all of the input is new";
  }
  return result;
}

static bool is_import_without_options(const step& s) {
  static const std::set<std::string> modes{"verify", "create", "replace"};
  return !s.words.empty() && modes.count(s.words[0]) != 0 &&
         (s.words.size() < 2 || s.words[1][0] != '-');
}

class case_test : public testing::Test {
 public:
  case_test(test_case c, std::string file) : case_(std::move(c)), file_(std::move(file)) {}
  void TestBody() override {
    const workshop place;
    for (const auto& [name, text] : case_.files) place.write(name, text);
    for (step& s : case_.steps) {
      std::string command;
      for (const std::string& word : s.words) command += " " + word;
      SCOPED_TRACE(file_ + ":" + std::to_string(case_.line) + ":" + command);
      if (!s.options.program.empty()) s.options.program = SQLITE3;
      const run_result result = file_ != "command_line" && is_import_without_options(s)
                                    ? run_import(place, s)
                                    : place.run(s.words, s.options);
      compare("standard output", s.expected["out"], result.out);
      compare("standard error", s.expected["err"], result.err);
      if (s.expected.count("log") != 0) compare("log", s.expected["log"], result.log);
      EXPECT_EQ(s.expected["exit"], std::to_string(result.exit_status));
    }
  }

 private:
  test_case case_;
  std::string file_;
};

// --- Every finding is expected by some case ------------------------------------------------------

// The "Error: ..." and "Warning: ..." texts of the findings that the import reports, with %s.
static std::set<std::string> findings_in_sources() {
  static const std::regex sentence("\n?((?:Error|Warning): [^\"\n]*)\\s*");
  static const std::regex placeholder("\\{[a-z]+\\}");
  std::set<std::string> found;
  for (const source_text& each : texts_in("deploy/import")) {
    for (const deploy::finding_row& row : deploy::FINDINGS) {
      if (each.text != row.id) continue;
      std::smatch match;
      const std::string text = std::regex_replace(row.text, placeholder, "%s");
      if (std::regex_match(text, match, sentence)) found.insert(match[1]);
    }
  }
  return found;
}

// Fits the finding with anything in place of its %s and %d.
static std::regex pattern_of(const std::string& finding) {
  static const std::regex special("[.()*+?^$|{}\\[\\]\\\\]");
  static const std::regex placeholder("%[sd]");
  const std::string quoted = std::regex_replace(finding, special, "\\$&");
  return std::regex(std::regex_replace(quoted, placeholder, ".*"));
}

class findings_test : public testing::Test {
 public:
  explicit findings_test(std::set<std::string> lines) : lines_(std::move(lines)) {}
  void TestBody() override {
    const std::set<std::string> findings = findings_in_sources();
    EXPECT_GT(findings.size(), 40u);
    for (const std::string& finding : findings) {
      const std::regex pattern = pattern_of(finding);
      const auto fits = [&](const std::string& line) { return std::regex_match(line, pattern); };
      EXPECT_TRUE(std::any_of(lines_.begin(), lines_.end(), fits))
          << "no case expects: " << finding;
    }
  }

 private:
  std::set<std::string> lines_;  // what the cases expect, and what no file can bring about
};

static void register_findings_test(const fs::path& folder,
                                   const std::vector<std::vector<test_case>>& files) {
  std::set<std::string> lines;
  for (const std::string& line : lines_of(slurp(folder / "unreachable.txt"))) lines.insert(line);
  for (const auto& cases : files) {
    for (const test_case& c : cases) {
      for (const step& s : c.steps) {
        for (const auto& [section, text] : s.expected) {
          for (const std::string& line : lines_of(text)) lines.insert(line);
        }
      }
    }
  }
  testing::RegisterTest("findings", "are_each_expected_by_some_case", nullptr, nullptr, __FILE__,
                        __LINE__, [=]() -> testing::Test* { return new findings_test(lines); });
}

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  setenv("TAV_DEPLOY", TAV_DEPLOY, 1);
  setenv("TAV_DICT", TAV_DICT, 1);
  std::vector<fs::path> files;
  const fs::path folder = argc > 1 ? argv[1] : TAV_CASES;
  for (const auto& entry : fs::directory_iterator(folder)) {
    if (entry.path().extension() == ".case") files.push_back(entry.path());
  }
  std::sort(files.begin(), files.end());
  std::vector<std::vector<test_case>> all;
  for (const fs::path& file : files) {
    all.push_back(read_cases(file));
    for (const test_case& c : all.back()) {
      const std::string suite = file.stem().string();
      testing::RegisterTest(suite.c_str(), c.title.c_str(), nullptr, nullptr, file.c_str(), c.line,
                            [=]() -> testing::Test* { return new case_test(c, suite); });
    }
  }
  if (argc == 1) register_findings_test(folder, all);
  return RUN_ALL_TESTS();
}
