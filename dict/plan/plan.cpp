// The command plan: all that deploying definition files would do, and what would be refused.
#include "dict/plan/plan.h"

#include <CLI/CLI.hpp>
#include <iostream>
#include <memory>

#include "dict/commands.h"
#include "dict/files.h"
#include "dict/history/history.h"
#include "dict/lint/spared.h"
#include "dict/options.h"
#include "dict/terminal/colour.h"
#include "dict/terminal/visible.h"

namespace dict {

namespace {

struct request {
  std::vector<std::string> files;
  std::string database;
  std::string output;
  bool is_json = false;
  std::string colour = "auto";
};

}  // namespace

static bool read_sources(const std::vector<std::string>& files, std::vector<lint::source>& sources,
                         dm::problem& why) {
  for (const std::string& file : files) {
    file_content content;
    const std::string shown = file != STANDARD_INPUT ? file : "<standard input>";
    if (!read_file(file, shown, content, why)) return false;
    sources.push_back({shown, syntax::read(std::move(content.text))});
  }
  return true;
}

static bool open(const request& asked, snapshot& on, dm::problem& why) {
  uint64_t number = 0;
  if (!open_snapshot(on, why)) return false;
  if (!asked.output.empty() && !must_have_journal(*on.session.store, why)) return false;
  return choose_database(asked.database, on.session.settings, number, why) &&
         choose_database(number, on, why) && fetch_held(on, why);
}

static std::vector<std::string> lines_in(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream from(text);
  for (std::string line; std::getline(from, line);) lines.push_back(line);
  return lines;
}

static bool write_plan(const request& asked, snapshot& on, const told_plan& told,
                       dm::problem& why) {
  plan made;
  if (!make_plan(on, told.sources, told.files, made, why)) return false;
  made.changes = lines_in(lines_of(told, false));
  made.losses = told.losses;
  return write_file(asked.output, file_of(made), why);
}

static int conclude(const request& asked, snapshot& on, const told_plan& told) {
  dm::problem why;
  std::cout << visible_lines{asked.is_json ? as_json(told) : ""};
  if (!asked.is_json) std::cout << as_text(told, is_coloured(asked.colour));
  if (is_refused(told.files)) return FAILED;
  if (!asked.output.empty() && !write_plan(asked, on, told, why)) return fail(why);
  return told.files.result.changes.empty() ? DONE : FOUND;
}

static int run(request asked) {
  dm::problem why;
  snapshot on;
  std::vector<lint::source> sources;
  if (asked.files.empty()) asked.files.push_back(STANDARD_INPUT);
  if (!asked.output.empty() &&
      (!is_spared("--output", asked.output, asked.files, why) || !takes_plan(asked.output, why)))
    return fail(why);
  if (!read_sources(asked.files, sources, why) || !open(asked, on, why)) return fail(why);
  judged files;
  told_plan told{sources, files};
  if (!judge_and_tell(on, files, told, why)) return fail(why);
  const int status = conclude(asked, on, told);
  on.held.fields.leave();
  on.held.classes.leave();
  return status;
}

void add_plan(CLI::App& app, int& result) {
  const auto asked = std::make_shared<request>();
  auto* command = app.add_subcommand(
      "plan",
      "Tell all that 'replace' of definition files would do and what it would refuse, and keep it "
      "for 'apply'");
  command->add_option("files", asked->files, "Definition files; none or - for standard input");
  add_database_option(*command, asked->database);
  command->add_option("--output", asked->output, "Write the plan to this file, for 'apply'");
  add_json_option(*command, asked->is_json);
  add_colour_option(*command, asked->colour);
  command->callback([asked, &result] { result = run(*asked); });
}

}  // namespace dict
