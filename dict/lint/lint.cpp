// lint: everything that is wrong with definition files, and where, in one run.
#include "lint/lint.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <iostream>
#include <memory>

#include "dict/commands.h"
#include "dict/database_files.h"
#include "dict/files.h"
#include "dict/lint/against.h"
#include "dict/lint/baseline_file.h"
#include "dict/lint/excerpt.h"
#include "dict/lint/rules.h"
#include "dict/lint/same_files.h"
#include "dict/lint/spared.h"
#include "dict/lint/used.h"
#include "dict/options.h"
#include "dict/terminal/colour.h"
#include "dm/folded.h"
#include "lint/ignores.h"
#include "lint/rules.h"
#include "lint/rules/echoes.h"
#include "lint/rules/tokens.h"

namespace dict {

namespace {

struct request {
  std::vector<std::string> named;
  std::string input_name;
  std::string against;
  std::string database;
  std::string config;
  std::string baseline;
  bool writes_baseline = false;
  std::string form = "text";
  std::string output;
  std::string colour = "auto";
  std::string lowest = "note";  // level that is told
  std::string fail_on = "error";
  bool lists_rules = false;
};

struct linted {
  std::vector<std::string> files{};  // as they are opened, those that cannot be read included
  std::vector<lint::source> sources{};
  std::vector<struct stat> statuses{};  // of the sources
  std::vector<lint::outcome> findings{};
  uint64_t untold[4] = {};                              // by lint::level
  std::function<bool(const lint::rule&)> is_checked{};  // whether this run could find it
};

}  // namespace

static lint::level level_called(const std::string& name) {
  lint::level level = lint::level::NOTE;
  level_of(name, level);
  return level;
}

// Whoever reads it may have typed none of the names.
static int refuse(dm::problem why) {
  why.sentence = written_out(why.sentence);
  return fail(why);
}

static bool is_possible(const request& asked, dm::problem& why) {
  const auto inputs = std::count(asked.named.begin(), asked.named.end(), STANDARD_INPUT);
  if (asked.named.empty()) {
    why.sentence = "Give the files or folders to lint, or - for standard input.";
  } else if (inputs > 1) {
    why.sentence = "Standard input (-) can be linted once only.";
  } else if (inputs == 0 && !asked.input_name.empty()) {
    why.sentence = "--stdin-filename names standard input (-), which is not among the files.";
  } else if (asked.writes_baseline && asked.baseline.empty()) {
    why.sentence = "--write-baseline writes the file that --baseline names: give that, too.";
  } else if (!asked.database.empty() && asked.against.empty()) {
    why.sentence = "-d chooses a database of the dictionary that --against names: give that, too.";
  } else if (level_called(asked.fail_on) < level_called(asked.lowest)) {
    why.sentence = dm::join({"--level ", asked.lowest, " leaves out what --fail-on ", asked.fail_on,
                             " counts: a run would fail and tell nothing. Give --level ",
                             asked.fail_on, ", or leave it away."});
  }
  return why.sentence.empty();
}

// --- Files ---------------------------------------------------------------------------------------

// Appends those that are not excluded; a file that is named itself never is.
static void add_files(const std::string& named, const lint_config& config,
                      std::vector<std::string>& files, std::vector<dm::problem>& problems) {
  std::vector<std::string> found;
  const size_t known_problems = problems.size();
  find_files(named, found, problems);
  if (found.size() == 1 && found.front() == named) return files.push_back(named);
  std::erase_if(found, [&](const std::string& file) { return is_excluded(config, file); });
  files.insert(files.end(), found.begin(), found.end());
  if (!found.empty() || problems.size() > known_problems) return;
  problems.emplace_back();
  problems.back().sentence =
      dm::join({"Folder ", dm::quoted(named), " holds no definition file (*.def) that ",
                dm::quoted(config.path), " does not exclude."});
}

static bool add_source(const request& asked, const std::string& name, linted& to,
                       dm::problem& why) {
  file_content content;
  const std::string shown = name != STANDARD_INPUT     ? name
                            : asked.input_name.empty() ? "<standard input>"
                                                       : asked.input_name;
  if (!read_file(name, shown, content, why)) return false;
  to.sources.push_back({shown, syntax::read(std::move(content.text))});
  to.statuses.push_back(content.status);
  return true;
}

// DONE, or FAILED with what could not be read printed; the rest is linted all the same.
static int read_sources(const request& asked, const lint_config& config, linted& to) {
  int status = DONE;
  std::vector<std::string>& files = to.files;
  std::vector<dm::problem> problems;
  for (const std::string& named : asked.named) add_files(named, config, files, problems);
  for (const std::string& file : files) {
    dm::problem why;
    if (!add_source(asked, file, to, why)) problems.push_back(why);
  }
  for (const dm::problem& problem : problems) status = refuse(problem);
  return status;
}

// --- Findings ------------------------------------------------------------------------------------

// Who hides a warning by its name must not hide an error that goes by that, too.
static void set_levels(const lint_config& config, std::vector<lint::finding>& found) {
  for (lint::finding& each : found) {
    if (each.told != lint::level::OFF) each.told = level_of(config, each.rule);
    std::erase_if(each.aliases, [&](const lint::alias& other) {
      return level_of(config, other.rule) != each.told;
    });
  }
  std::erase_if(found, [](const lint::finding& each) { return each.told == lint::level::OFF; });
}

static void leave_out_lower(const request& asked, linted& found) {
  const lint::level lowest = level_called(asked.lowest);
  const auto is_lower = [lowest](const lint::outcome& one) { return one.found.told < lowest; };
  std::erase_if(found.findings, is_lower);
  std::fill_n(found.untold, static_cast<size_t>(lowest), 0);
}

static void find(const lint_config& config, const lint::world& world, linted& to) {
  lint::result result = lint::lint(to.sources, world);
  for (size_t i = 0; i < 4; ++i) to.untold[i] += result.untold[i];
  lint::name_tokens(to.sources, result.told);
  set_levels(config, result.told);
  lint::drop_echoes(result.told);
  to.findings = lint::outcomes_of(std::move(result.told), to.sources);
  to.is_checked = [&config, has_dictionary = world.fields != nullptr](const lint::rule& rule) {
    const bool needs_dictionary =
        rule.from == lint::origin::DICTIONARY || rule.from == lint::origin::LOSS;
    return (!needs_dictionary || has_dictionary) && level_of(config, rule.id) != lint::level::OFF;
  };
  auto about_comments = lint::hide_ignored(to.sources, {to.is_checked}, to.findings);
  to.untold[static_cast<size_t>(lint::level::WARNING)] += about_comments.untold;
  std::erase_if(about_comments.told, [&](const lint::finding& each) {
    return lint::is_read_again(config.own, each.where.source);
  });
  set_levels(config, about_comments.told);
  lint::merge(lint::outcomes_of(std::move(about_comments.told), to.sources), to.findings);
}

static uint64_t untold(const linted& found) {
  uint64_t sum = 0;
  for (const uint64_t count : found.untold) sum += count;
  return sum;
}

// A baseline that is not pruned hides the same mistakes when they are made again.
static void tell_outlived(const request& asked, const lint::baseline& left, const linted& found) {
  if (untold(found) > 0 || asked.lowest != "note") return;
  const uint64_t count =
      lint::count_outlived(left, found.findings, found.sources, found.is_checked);
  if (count == 0) return;
  std::cerr << "Note: baseline " << written_out(asked.baseline) << " knows " << count
            << (count == 1 ? " finding of these files that occurs"
                           : " findings of these files that occur")
            << " no more: --write-baseline writes it anew.\n";
}

static bool hide_known(const request& asked, linted& found, dm::problem& why) {
  if (asked.baseline.empty()) return true;
  lint::baseline known;
  if (!read_baseline_file(asked.baseline, known, why)) return false;
  lint::hide_known(known, found.findings);
  tell_outlived(asked, known, found);
  return true;
}

static int write_baseline(const request& asked, const linted& found) {
  dm::problem why;
  if (untold(found) > 0) {
    why.sentence =
        "There are more findings than lint tells, and a baseline would not know all of "
        "them: mend some, or switch rules off.";
    return refuse(why);
  }
  if (!write_file(asked.baseline, lint::write_baseline(found.findings), why)) return refuse(why);
  std::cout << "Wrote baseline " << written_out(asked.baseline) << ".\n";
  return DONE;
}

// --- Telling -------------------------------------------------------------------------------------

static bool tell(const request& asked, const lint_report& report, dm::problem& why) {
  const auto* form = std::find_if(std::begin(LINT_FORMS), std::end(LINT_FORMS),
                                  [&](const lint_form& each) { return each.name == asked.form; });
  const text_pieces text = [&](const text_sink& to) { form->write(report, to); };
  if (!asked.output.empty()) return write_file(asked.output, text, why);
  text([](std::string_view piece) { std::cout << piece; });
  return true;
}

static bool has_failed(const request& asked, const linted& found) {
  lint::level lowest = lint::level::ERROR;
  level_of(asked.fail_on, lowest);
  const auto counts = [lowest](const lint::outcome& one) {
    return one.hidden == lint::hidden_by::NOTHING && one.found.told >= lowest;
  };
  bool has_untold = false;
  for (auto i = static_cast<size_t>(lowest); i < 4; ++i) has_untold |= found.untold[i] > 0;
  return has_untold || std::ranges::any_of(found.findings, counts);
}

// Lint's own rules, which also want to know which fields the dictionary's classes use.
static void add_own(lint_config& config, lint::world& world, linted& to) {
  if (world.classes != nullptr) {
    config.own.is_used_elsewhere = [names = used_fields(world.classes)](std::string_view field) {
      return names.contains(dm::folded(field));
    };
  }
  config.own.same_file = same_files(to.statuses);
  config.own.level_of = [&config](std::string_view rule) { return level_of(config, rule); };
  world.own = [&config, &to](const lint::index& all, size_t most) {
    lint::own_findings found = lint::check_own(all, config.own, most);
    for (size_t i = 0; i < 4; ++i) to.untold[i] += found.untold[i];
    return std::move(found.told);
  };
}

// Whether nothing that is read would be lost.
static bool may_write(const request& asked, const lint_config& config, const linted& found,
                      dm::problem& why) {
  std::vector<std::string> read = found.files;
  read.insert(read.end(), {config.path, asked.against});
  if (asked.writes_baseline)
    return is_spared("--write-baseline", asked.baseline, read, why) &&
           takes_baseline(asked.baseline, why);
  read.push_back(asked.baseline);
  return is_spared("--output", asked.output, read, why) &&
         spares_database("--output", asked.output, why);
}

static int lint_files(const request& asked) {
  dm::problem why;
  lint_config config;
  if (!asked.lists_rules && !is_possible(asked, why)) return refuse(why);
  if (!read_config(asked.config, config, why)) return refuse(why);
  const std::vector<lint_rule> rules = lint_rules(config);
  if (asked.lists_rules) return std::cout << list_of(rules), DONE;
  linted found;
  const int status = read_sources(asked, config, found);
  if (found.sources.empty()) return FAILED;
  if (!may_write(asked, config, found, why)) return refuse(why);
  against held;
  const bool has_world = !asked.against.empty();
  if (has_world && !read_against(asked.against, asked.database, held, why)) return refuse(why);
  lint::world world = has_world ? world_of(held) : lint::world();
  world.ends_soon = true;
  world.is_off = [&config](std::string_view rule) {
    return level_of(config, rule) == lint::level::OFF;
  };
  add_own(config, world, found);
  find(config, world, found);
  leave_out_lower(asked, found);
  if (asked.writes_baseline) return status != DONE ? status : write_baseline(asked, found);
  if (!hide_known(asked, found, why)) return refuse(why);
  const bool is_shown = asked.output.empty();
  const lint_report report{found.sources,
                           found.findings,
                           rules,
                           untold(found),
                           is_shown ? is_coloured(asked.colour) : asked.colour == "always",
                           status == DONE};
  if (!tell(asked, report, why)) return refuse(why);
  return status != DONE ? status : has_failed(asked, found) ? FOUND : DONE;
}

void add_lint(CLI::App& app, int& result) {
  const auto asked = std::make_shared<request>();
  auto* command = app.add_subcommand(
      "lint",
      "Tell everything that is wrong with definition files, and where; needs no dictionary");
  command->add_option("files", asked->named,
                      "Definition files, or folders for all *.def below; - for standard input");
  command->add_option("--stdin-filename", asked->input_name,
                      "The name by which findings call standard input");
  command->add_option(
      "--against", asked->against,
      "Check against a dictionary, too: . for that of tav.conf, another as tav.conf "
      "would name it, or the file of an export");
  add_database_option(*command, asked->database);
  command->add_option("--config", asked->config,
                      "The configuration, in place of the nearest tav-lint.ini from here upwards");
  command->add_option("--baseline", asked->baseline,
                      "Leave out what this file lists: the findings when it was written");
  command->add_flag("--write-baseline", asked->writes_baseline,
                    "Write that file, in place of telling the findings");
  std::vector<std::string> forms;
  for (const lint_form& each : LINT_FORMS) forms.emplace_back(each.name);
  command->add_option("--format", asked->form, "text, json, sarif, github or gitlab")
      ->check(CLI::IsMember(forms));
  command->add_option("--output", asked->output, "Write to this file, in place of standard output");
  const auto levels = CLI::IsMember({"error", "warning", "note"});
  command
      ->add_option("--level", asked->lowest,
                   "Leave out what is below this level: error, warning or note (as by default)")
      ->check(levels);
  command
      ->add_option("--fail-on", asked->fail_on,
                   "End with 1 from this level on: error (as by default), warning or note")
      ->check(levels);
  add_colour_option(*command, asked->colour);
  command->add_flag("--list-rules", asked->lists_rules,
                    "List the rules with the levels that they have here");
  command->callback([asked, &result] { result = lint_files(*asked); });
}

}  // namespace dict
