// tav_dict: makes and looks after the dictionary that tav.conf names.
#include <CLI/CLI.hpp>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <iostream>
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
    "     change a file, 'lint' has findings that count, or 'undo', 'revert-to', 'drop', 'rename'\n"
    "     or 'move-storage' was refused\n"
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

static int run(int argc, char** argv) {
  for (int i = 1; i < argc; ++i) {
    if (is_secret(argv[i - 1], argv[i])) return refuse_password();
  }
  CLI::App app(DESCRIPTION, "tav_dict");
  app.set_version_flag("--version", "tav_dict " TAV_DICT_VERSION ", schema version " +
                                        std::to_string(dm::SCHEMA_VERSION));
  app.require_subcommand(1);
  std::string number;
  int result = dict::FAILED;
  app.add_subcommand("init", "Make the dictionary, with the database of 'userid'")->callback([&] {
    result = dict::init();
  });
  auto* add = app.add_subcommand("add-database", "Add a database to the dictionary");
  add->add_option("number", number, "Its number, N.N.N.N")->required();
  add->callback([&] { result = dict::add_database(number); });
  dict::add_status(app, result);
  std::string head;
  auto* verify = app.add_subcommand(
      "check", "Verify the dictionary's integrity and every rule of its content");
  verify->add_option("--head", head, "A hash that 'status' printed: the journal must hold it");
  verify->callback([&] { result = dict::check(head); });
  std::string file;
  auto* save =
      app.add_subcommand("backup", "Copy the dictionary into a new file, while others work");
  save->add_option("FILE", file, "The copy: a dictionary file, for its owner only")->required();
  save->callback([&] { result = dict::backup(file); });
  auto* restore =
      app.add_subcommand("restore", "Make the dictionary, with all that a backup holds");
  restore->add_option("FILE", file, "The backup")->required();
  restore->callback([&] { result = dict::restore(file); });
  dict::add_upgrade(app, result);
  dict::add_diff(app, result);
  dict::add_plan(app, result);
  dict::add_apply(app, result);
  dict::add_explain(app, result);
  dict::add_format(app, result);
  dict::add_lint(app, result);
  dict::add_list(app, result);
  dict::add_next_id(app, result);
  dict::add_export(app, result);
  dict::add_uses(app, result);
  dict::add_log(app, result);
  dict::add_show(app, result);
  dict::add_blame(app, result);
  dict::add_tag(app, result);
  dict::add_prune(app, result);
  dict::add_undo(app, result);
  dict::add_revert_to(app, result);
  dict::add_drop(app, result);
  dict::add_rename(app, result);
  dict::add_move_storage(app, result);
  dict::add_site(app, result);
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
