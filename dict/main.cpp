// tav_dict: makes and looks after the dictionary that tav.conf names.
#include <CLI/CLI.hpp>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <iostream>
#include <memory>
#include <new>
#include <sstream>

#include "dd/descriptors.h"
#include "dd/last_resort.h"
#include "dict/commands.h"
#include "dict/terminal/output.h"
#include "dict/terminal/visible.h"
#include "dm/open.h"
#include "dm/schema.h"

static constexpr char DESCRIPTION[] =
    "Makes and looks after the dictionary that tav.conf names.\n"
    "tav.conf is found at $TAV_CONF, else in the working folder, else in /etc/tav.\n"
    "Exit status:\n"
    "  0  done, and nothing found\n"
    "  1  'check' has findings, 'diff' found differences, 'plan' found changes that can be "
    "deployed,\n"
    "     'apply' found something changed since its plan was made, 'restore' found its backup "
    "damaged,\n"
    "     'explain' does not know the message, 'uses' or 'blame' not the name, 'format' would\n"
    "     change a file, 'lint' has findings that count, or 'undo', 'revert-to', 'drop',\n"
    "     'drop-database', 'rename' or 'move-storage' was refused\n"
    "  2  wrong usage, or a failure";

static constexpr char NO_MEMORY[] = "tav_dict: There is not enough memory.\n";

// Runs before the static objects of the command-line library are made, which need memory.
[[gnu::constructor(101)]] static void end_without_memory() {
  dd_end_without_memory(NO_MEMORY, dict::FAILED);
}

// Repeats an argument only if it looks like an option: any other may be a password.
static int refuse_extra(const std::vector<std::string>& extra) {
  const auto is_option = [](const std::string& text) {
    return text[0] == '-' && text.find_first_not_of("-abcdefghijklmnopqrstuvwxyz") == text.npos;
  };
  const auto option = std::find_if(extra.begin(), extra.end(), is_option);
  dm::problem why;
  why.sentence = option != extra.end()
                     ? dm::join({"There is no option ", dm::quoted(*option), " here."})
                     : "The command line has arguments that the command does not take.";
  why.sentence += " See 'tav_dict --help'.";
  return dict::fail(why);
}

// Whether the argument is a server's address with a password. The command would take it for a file
// name and repeat it. What follows --with is tested by diff.
static bool is_secret(const char* before, const std::string& argument) {
  if (std::strcmp(before, "--with") == 0 || argument.rfind("--with=", 0) == 0) return false;
  return dm::is_misplaced_secret(argument);
}

static int refuse_password() {
  dm::problem why;
  why.sentence =
      "An argument holds a password, and everybody can read command lines: change it, and keep the "
      "new one in PostgreSQL's own password file.";
  return dict::fail(why);
}

// --- Commands without a file of their own --------------------------------------------------------

static void add_init(CLI::App& app, int& result) {
  auto* command = app.add_subcommand("init", "Make the dictionary, with the database of 'userid'");
  command->callback([&result] { result = dict::init(); });
}

// A command that takes one text.
static void add_with_text(CLI::App& app, int& result, const char* name, const char* about,
                          const char* option, const char* meaning,
                          int (*call)(const std::string&)) {
  const auto text = std::make_shared<std::string>();
  auto* command = app.add_subcommand(name, about);
  command->add_option(option, *text, meaning)->required(*option != '-');
  command->callback([text, call, &result] { result = call(*text); });
}

static void add_add_database(CLI::App& app, int& result) {
  add_with_text(app, result, "add-database", "Add a database to the dictionary", "number",
                "Its number, N.N.N.N", dict::add_database);
}

static void add_check(CLI::App& app, int& result) {
  add_with_text(app, result, "check",
                "Verify the dictionary's integrity and every rule of its content", "--head",
                "A hash that 'status' printed: the journal must hold it", dict::check);
}

static void add_backup(CLI::App& app, int& result) {
  add_with_text(app, result, "backup", "Copy the dictionary into a new file, while others work",
                "FILE", "The copy: a dictionary file, for its owner only", dict::backup);
}

static void add_restore(CLI::App& app, int& result) {
  add_with_text(app, result, "restore", "Make the dictionary, with all that a backup holds", "FILE",
                "The backup", dict::restore);
}

// --- All commands --------------------------------------------------------------------------------

// In the order of the help, under the headings that it gives them.
static const struct {
  const char* heading;
  std::vector<void (*)(CLI::App& app, int& result)> commands;
} GROUPS[] = {
    {"Look at definitions",
     {dict::add_list, dict::add_uses, dict::add_next_id, dict::add_export, dict::add_diff,
      dict::add_site, dict::add_lint, dict::add_format, dict::add_explain}},
    {"History", {dict::add_log, dict::add_show, dict::add_blame, dict::add_tag, dict::add_prune}},
    {"Change definitions",
     {dict::add_plan, dict::add_apply, dict::add_undo, dict::add_revert_to, dict::add_rename,
      dict::add_drop, dict::add_move_storage}},
    {"Care for the dictionary",
     {add_init, add_add_database, dict::add_drop_database, dict::add_status, add_check, add_backup,
      add_restore, dict::add_upgrade}},
};

static void add_commands(CLI::App& app, int& result) {
  for (const auto& group : GROUPS) {
    for (const auto add : group.commands) {
      add(app, result);
      app.get_subcommands({}).back()->group(group.heading);
    }
  }
}

// --- The command line ----------------------------------------------------------------------------

static int run(int argc, char** argv) {
  for (int i = 1; i < argc; ++i) {
    if (is_secret(argv[i - 1], argv[i])) return refuse_password();
  }
  CLI::App app(DESCRIPTION, "tav_dict");
  app.set_version_flag("--version", "tav_dict " TAV_DICT_VERSION ", schema version " +
                                        std::to_string(dm::SCHEMA_VERSION));
  app.require_subcommand(1);
  int result = dict::FAILED;
  add_commands(app, result);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ExtrasError&) {
    return refuse_extra(app.remaining(true));
  } catch (const CLI::ParseError& error) {
    std::ostringstream refusal;  // repeats what was typed
    const bool is_done = app.exit(error, std::cout, refusal) == 0;
    std::cerr << dict::visible_lines{refusal.str()};
    return is_done ? dict::DONE : dict::FAILED;
  }
  return result;
}

// Allocates nothing.
static int fail_without_memory() {
  std::fputs(NO_MEMORY, stderr);
  return dict::FAILED;
}

static int run_guarded(int argc, char** argv) try {
  return run(argc, argv);
} catch (const std::bad_alloc&) {
  return fail_without_memory();
} catch (const std::length_error&) {
  return fail_without_memory();
} catch (const std::exception& error) {
  std::cerr << "tav_dict: " << dict::visible{error.what()} << '\n';
  return dict::FAILED;
}

int main(int argc, char** argv) {
  if (!dd_fill_descriptors()) return dict::FAILED;
  // A closed pipe, or a file at its size limit, must not end the process: the write fails, and that
  // is reported like any other failure.
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);
  const dict::output output;
  const int result = run_guarded(argc, argv);
  std::cout.flush();
  if (output.error() == 0) return result;
  std::fprintf(stderr, "tav_dict: Standard output cannot be written: %s.\n",
               std::strerror(output.error()));
  return dict::FAILED;
}
