// What plan says of definition files, diff and replace of the same files hold against it.
#include <sstream>

#include "tests/verdict/verdict.h"

static run_result tell(const workshop& in, std::vector<std::string> words,
                       const std::vector<std::string>& files, const std::string& input) {
  run_options options;
  options.input = input;
  words.insert(words.end(), files.begin(), files.end());
  return in.run(words, options);
}

static bool begins(const std::string& line, const char* start) {
  return line.rfind(start, 0) == 0;
}

// The lines about differences, without marks and what diff does not compare.
static std::string differences_in(const std::string& text) {
  std::string lines;
  std::istringstream from(text);
  for (std::string line; std::getline(from, line);) {
    const bool is_one = line.find_first_not_of(' ') != line.npos &&
                        std::string("+~-=").find(line[line.find_first_not_of(' ')]) != line.npos;
    if (begins(line, "! refused")) break;
    if (!is_one || line.find(": the order of entries") != line.npos) continue;
    const size_t mark = line.find("  (destructive)");
    lines += line.substr(0, mark) + "\n";
  }
  return lines;
}

// What the dictionary holds; the journal tells by whom and when, too.
static std::string content_of(const workshop& in) {
  std::string rows;
  std::istringstream from(in.dictionary());
  for (std::string line; std::getline(from, line);) {
    if (!begins(line, "INSERT INTO dd_journal") && line.find("sqlite_sequence") == line.npos)
      rows += line + "\n";
  }
  return rows;
}

static std::string compare_refused(const run_result& diff, const run_result& replaced) {
  if (replaced.exit_status == 0) return "plan alone refuses";
  return diff.exit_status == 1 && diff.out.find("! refused") == diff.out.npos
             ? "diff has no refusal"
             : "";
}

static std::string compare_deployed(const workshop& in, const run_result& plan,
                                    const run_result& diff, const std::string& before,
                                    const std::string& after) {
  if (differences_in(plan.out) != differences_in(diff.out))
    return "differences of plan:\n" + plan.out + "and of diff:\n" + diff.out;
  if (plan.exit_status == 0) return before == after ? "" : "plan sees nothing to do";
  if (before == after) return "plan sees something to do";
  const run_result applied = in.run({"dict", "apply", "a.plan", "--yes", "--allow-destructive"});
  if (applied.exit_status != 0) return "not applied: " + applied.out + applied.err;
  return content_of(in) == after ? "" : "apply deployed something else than replace";
}

std::string compare_plan(const workshop& in, const std::vector<std::string>& files,
                         const std::string& input) {
  const std::string before = content_of(in);
  const run_result plan = tell(in, {"dict", "plan", "--output", "a.plan"}, files, input);
  const run_result diff = tell(in, {"dict", "diff"}, files, input);
  if (content_of(in) != before) return "plan or diff left a trace";
  const run_result replaced = tell(in, {"replace"}, files, input);
  const std::string after = content_of(in);
  in.restore();
  if (plan.exit_status == 2) return compare_refused(diff, replaced);
  if (replaced.exit_status != 0) return "plan refuses nothing";
  return compare_deployed(in, plan, diff, before, after);
}
