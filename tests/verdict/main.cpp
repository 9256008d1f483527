// Lint against the tool: the case files' imports, the fuzz corpora, and mutations of the examples.
//   test_verdict [MUTATIONS [SEED]]
#include <algorithm>
#include <filesystem>
#include <iostream>
#include <random>
#include <sstream>

#include "tests/verdict/verdict.h"

namespace fs = std::filesystem;

static size_t compared = 0;
static size_t different = 0;

// Whether the dictionary holds the files afterwards.
static bool check(const workshop& in, const std::string& what,
                  const std::vector<std::string>& files, const std::string& input = "") {
  std::string difference;
  const agreement result = compare(in, files, input, difference);
  ++compared;
  if (result == agreement::DIFFERENT) {
    ++different;
    std::cout << what << ": " << difference;
    for (const std::string& file : files)
      if (in.read(file).size() < 3000 && different < 20)
        std::cout << "--- " << file << '\n' << in.read(file) << '\n';
  }
  return result == agreement::COMMITTED;
}

static void check_plan(const workshop& in, const std::string& what,
                       const std::vector<std::string>& files, const std::string& input) {
  const std::string difference = compare_plan(in, files, input);
  ++compared;
  if (difference.empty()) return;
  ++different;
  std::cout << what << ", plan: " << difference << '\n';
}

// --- Case files ----------------------------------------------------------------------------------

namespace {

struct case_run {
  std::vector<std::string> words{};
  std::string input{};
};

struct case_of_files {
  std::string title;
  std::vector<std::pair<std::string, std::string>> files{};
  std::vector<case_run> runs{};
};

}  // namespace

static case_run run_of(const std::string& line) {
  case_run run;
  std::istringstream words(line);
  for (std::string word; words >> word;) {
    if (word == "<") {
      words >> run.input;
    } else {
      run.words.push_back(word);
    }
  }
  return run;
}

static std::vector<case_of_files> cases_in(const fs::path& path) {
  std::vector<case_of_files> cases;
  std::istringstream lines(slurp(path));
  std::string* text = nullptr;
  for (std::string line; std::getline(lines, line);) {
    if (line.rfind("=== ", 0) != 0) {
      if (text == nullptr) continue;
      const bool is_open = !line.empty() && line.back() == '\\';
      if (is_open) line.pop_back();
      *text += is_open ? line : line + "\n";
      continue;
    }
    text = nullptr;
    const size_t blank = line.find(' ', 4);
    const std::string kind = line.substr(4, blank - 4);
    const std::string rest = blank == line.npos ? "" : line.substr(blank + 1);
    if (kind == "case") cases.push_back({rest});
    if (kind == "file") text = &cases.back().files.emplace_back(rest, "").second;
    if (kind == "run") cases.back().runs.push_back(run_of(rest));
  }
  return cases;
}

static bool is_import(const workshop& in, const case_run& run) {
  static constexpr const char* MODES[] = {"verify", "create", "replace"};
  if (run.words.empty() || std::ranges::count(MODES, run.words[0]) == 0) return false;
  return std::all_of(run.words.begin() + 1, run.words.end(),
                     [&](const std::string& word) { return fs::is_regular_file(in.path(word)); });
}

// Each import is compared with the dictionary as the runs before it left it.
static void check_case(const case_of_files& one) {
  const bool is_configured =
      std::ranges::any_of(one.files, [](const auto& file) { return file.first == "tav.conf"; });
  if (is_configured) return;  // which mostly refuses writes
  const workshop in;
  for (const auto& [name, text] : one.files) in.write(name, text);
  for (const case_run& run : one.runs) {
    if (is_import(in, run)) {
      in.save();
      check_plan(in, one.title, {run.words.begin() + 1, run.words.end()}, run.input);
      in.restore();
      check(in, one.title, {run.words.begin() + 1, run.words.end()}, run.input);
      in.restore();
    }
    run_options options;
    options.input = run.input;
    const bool is_shell = !run.words.empty() && run.words[0] == "sqlite3";
    if (!is_shell) in.run(run.words, options);
  }
}

static void check_cases() {
  for (const auto& file : fs::directory_iterator(TAV_CASES))
    if (file.path().extension() == ".case")
      for (const case_of_files& one : cases_in(file.path())) check_case(one);
}

// --- Corpora -------------------------------------------------------------------------------------

static void check_corpora() {
  const workshop in;
  in.save();
  for (const char* folder : {"reader", "syntax"}) {
    for (const auto& file : fs::directory_iterator(fs::path(TAV_CORPORA) / folder)) {
      in.write("a.def", slurp(file.path()));
      if (check(in, file.path().filename(), {"a.def"})) in.restore();
    }
  }
}

// --- Mutations -----------------------------------------------------------------------------------

using generator = std::mt19937_64;

static size_t below(generator& random, size_t count) {
  return count == 0 ? 0 : static_cast<size_t>(random() % count);
}

// The pieces that mutations move: words, strings, single characters.
static std::vector<std::string> pieces_of(const std::string& text) {
  std::vector<std::string> pieces;
  for (size_t at = 0; at < text.size();) {
    const bool is_space = std::isspace(static_cast<unsigned char>(text[at])) != 0;
    size_t end = at + 1;
    if (text[at] == '"') {
      end = std::min(text.find('"', end), text.size() - 1) + 1;
    } else if (is_space) {
      end = std::min(text.find_first_not_of(" \t\n", end), text.size());
    } else if (std::string("{}=;").find(text[at]) == std::string::npos) {
      end = std::min(text.find_first_of(" \t\n{}=;\"", end), text.size());
    }
    pieces.push_back(text.substr(at, end - at));
    at = end;
  }
  return pieces;
}

static const char* const STRANGE[] = {"STRING", "SUBSTRUCT", "ARRAY", "}", "{",  ";",        "\"",
                                      "0",      "16777216",  "-1",    "=", "#",  "\xff",     "\n",
                                      "/",      "System",    "BUF",   "",  "ID", "SQL_TABLE"};

static void mutate(std::string& text, generator& random) {
  std::vector<std::string> pieces = pieces_of(text);
  if (pieces.empty()) return;
  const size_t at = below(random, pieces.size());
  const size_t other = below(random, pieces.size());
  switch (below(random, 7)) {
    case 0:
      pieces[at].clear();
      break;
    case 1:
      pieces[at] = pieces[other];
      break;
    case 2:
      std::swap(pieces[at], pieces[other]);
      break;
    case 3:
      pieces[at] = STRANGE[below(random, std::size(STRANGE))];
      break;
    case 4:
      pieces.insert(pieces.begin() + static_cast<ptrdiff_t>(at),
                    STRANGE[below(random, std::size(STRANGE))]);
      break;
    case 5: {  // a stretch again, such as an entry or a line
      const size_t end = std::min(at + 1 + below(random, 20), pieces.size());
      const std::vector<std::string> stretch(pieces.begin() + static_cast<ptrdiff_t>(at),
                                             pieces.begin() + static_cast<ptrdiff_t>(end));
      pieces.insert(pieces.begin() + static_cast<ptrdiff_t>(other), stretch.begin(), stretch.end());
      break;
    }
    default: {  // or none of it
      const size_t end = std::min(at + 1 + below(random, 20), pieces.size());
      pieces.erase(pieces.begin() + static_cast<ptrdiff_t>(at),
                   pieces.begin() + static_cast<ptrdiff_t>(end));
    }
  }
  text.clear();
  for (const std::string& piece : pieces) text += piece;
}

static void check_mutations(size_t count, uint64_t seed) {
  static const std::vector<std::string> NAMES = {"fields.def", "devices.def", "orders.def",
                                                 "subscribers.def"};
  generator random(seed);
  const workshop fresh;
  const workshop filled;
  for (const std::string& name : NAMES) filled.write(name, slurp(fs::path(TAV_EXAMPLES) / name));
  std::vector<std::string> words = NAMES;
  words.insert(words.begin(), "replace");
  if (filled.run(words).exit_status != 0) throw std::runtime_error("the examples are refused");
  fresh.save();
  filled.save();
  for (size_t i = 0; i < count; ++i) {
    const workshop& in = random() % 2 == 0 ? fresh : filled;
    for (const std::string& name : NAMES) in.write(name, slurp(fs::path(TAV_EXAMPLES) / name));
    for (size_t changes = 1 + below(random, 4); changes > 0; --changes) {
      const std::string& name = NAMES[below(random, NAMES.size())];
      std::string text = in.read(name);
      mutate(text, random);
      in.write(name, text);
    }
    if (i % 10 == 0) check_plan(in, "mutation " + std::to_string(i), NAMES, "");
    in.restore();
    if (check(in, "mutation " + std::to_string(i), NAMES)) in.restore();
  }
}

int main(int argc, char** argv) {
  const size_t count = argc > 1 ? std::stoul(argv[1]) : 100;
  const uint64_t seed = argc > 2 ? std::stoull(argv[2]) : std::random_device()();
  std::cout << count << " mutations with seed " << seed << std::endl;
  check_cases();
  std::cout << compared << " after the cases" << std::endl;
  check_corpora();
  std::cout << compared << " after the corpora" << std::endl;
  check_mutations(count, seed);
  std::cout << compared << " compared, " << different << " different\n";
  return different == 0 ? 0 : 1;
}
