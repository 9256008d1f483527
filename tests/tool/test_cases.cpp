// Runs the case files: definition files and command lines, with what the tool must print, log and
// end with. The form of a case file is told in cases/README.md.
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <map>
#include <sstream>

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
      const run_result result = place.run(s.words, s.options);
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

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  std::vector<fs::path> files;
  const fs::path folder = argc > 1 ? argv[1] : TAV_CASES;
  for (const auto& entry : fs::directory_iterator(folder)) {
    if (entry.path().extension() == ".case") files.push_back(entry.path());
  }
  std::sort(files.begin(), files.end());
  for (const fs::path& file : files) {
    for (const test_case& c : read_cases(file)) {
      const std::string suite = file.stem().string();
      testing::RegisterTest(suite.c_str(), c.title.c_str(), nullptr, nullptr, file.c_str(), c.line,
                            [=]() -> testing::Test* { return new case_test(c, suite); });
    }
  }
  return RUN_ALL_TESTS();
}
