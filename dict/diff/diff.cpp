// The command diff: what is compared with what, and how the result is shown.
#include "dict/diff/diff.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <iostream>
#include <memory>

#include "deploy/modes.h"
#include "dict/commands.h"
#include "dict/history/history.h"
#include "dict/options.h"
#include "dict/reading.h"
#include "dict/terminal/colour.h"
#include "dict/terminal/visible.h"
#include "dm/open.h"
#include "vantor/binding.h"

namespace dict {

namespace {

struct request {
  std::vector<std::string> files;
  std::string database;
  std::string with;  // another dictionary, as tav.conf would name it
  std::string with_database;
  std::string at;  // points in the journal; empty: none, or now
  std::string to;
  bool lists_missing = false;
  bool is_json = false;
  std::string colour = "auto";
};

constexpr char STANDARD_INPUT[] = "-";

}  // namespace

// Refuses a password in --with: everybody can read the list of processes.
static bool is_without_password(const request& asked, dm::problem& why) {
  if (!tav_text_holds_password(asked.with)) return true;
  why.sentence =
      "--with holds a password, and everybody can read command lines: change it, and keep the new "
      "one in PostgreSQL's own password file.";
  return false;
}

static bool is_of_the_past(const request& asked) {
  return !asked.at.empty() || !asked.to.empty();
}

static bool choose_past(const request& asked, dm::problem& why) {
  if (asked.at.empty()) why.sentence = "--to needs --at, which says with what to compare.";
  if (!asked.files.empty() || !asked.with.empty() || !asked.with_database.empty()) {
    why.sentence =
        "Either two states of the dictionary (--at, --to) or files or another dictionary can be "
        "compared, not both.";
  }
  return why.sentence.empty();
}

static bool choose_files(request& asked, dm::problem& why) {
  if (is_of_the_past(asked)) return choose_past(asked, why);
  const auto is_input = [](const std::string& file) { return file == STANDARD_INPUT; };
  const auto end = std::remove_if(asked.files.begin(), asked.files.end(), is_input);
  const bool reads_input = end != asked.files.end();
  asked.files.erase(end, asked.files.end());
  if (reads_input && !asked.files.empty()) {
    why.sentence = "Either standard input (-) or files can be compared, not both.";
  } else if (!asked.with.empty() && (reads_input || !asked.files.empty())) {
    why.sentence = "Either files or another dictionary (--with) can be compared, not both.";
  } else if (asked.files.size() > deploy::MAX_NAMES) {
    why.sentence =
        dm::join({"At most ", std::to_string(deploy::MAX_NAMES), " files can be compared."});
  }
  return why.sentence.empty();
}

// The databases of both sides. Where the command line chooses none, that of the login.
static bool choose_databases(const request& asked, const dm::settings& settings, uint64_t& own,
                             uint64_t& other, dm::problem& why) {
  if (!choose_database(asked.database, settings, own, why)) return false;
  other = own;
  return asked.with_database.empty() || read_database(asked.with_database, other, why);
}

// A text that names no dictionary may hold a password: neither it nor another part's message about
// it is shown.
static bool fetch_other(const dm::settings& settings, uint64_t database, definitions& after,
                        dm::problem& why) {
  if (fetch(settings, database, after, why)) return true;
  if (why.code == TAV_ERR_BAD_CONF) why.sentence = dm::NAMES_NO_DICTIONARY;
  why.sentence.insert(0, "--with: ");
  return false;
}

static int gather_past(const request& asked, definitions& before, definitions& after) {
  dm::problem why;
  reading from;
  const bool is_read = begin_past(asked.database, from, why) &&
                       fetch_at(from, asked.at, before, why) &&
                       fetch_at(from, asked.to, after, why);
  return is_read ? DONE : fail(why);
}

// Reads both sides. DONE, or FAILED with the failure printed.
static int gather(const request& asked, definitions& before, definitions& after) {
  if (is_of_the_past(asked)) return gather_past(asked, before, after);
  dm::settings settings;
  dm::problem why;
  uint64_t database = 0;
  uint64_t other = 0;
  if (!dm::read_settings(settings, why)) return fail(why);
  if (!choose_databases(asked, settings, database, other, why)) return fail(why);
  if (asked.with.empty() && !read_files(asked.files, after)) {
    why.sentence = "The definition files have errors; nothing was compared.";
    return fail(why);
  }
  if (!fetch(settings, database, before, why)) return fail(why);
  if (asked.with.empty()) return DONE;
  settings.dictionary = dm::seen_from_working_folder(asked.with);
  return fetch_other(settings, other, after, why) ? DONE : fail(why);
}

static trial_result try_files(const request& asked, definitions& files) {
  uint64_t database = 0;
  dm::problem told_already;
  if (!asked.database.empty()) read_database(asked.database, database, told_already);
  return try_replace(files, database);
}

static int diff(request asked) {
  dm::problem why;
  if (!is_without_password(asked, why) || !choose_files(asked, why)) return fail(why);
  definitions before;
  definitions after;
  progress shown("comparing");
  if (gather(asked, before, after) != DONE) return FAILED;
  const bool is_deployment = asked.with.empty() && !is_of_the_past(asked);
  const comparison how{is_deployment, asked.lists_missing || !is_deployment, shown};
  std::vector<difference> found;
  if (!compare(before, after, how, found, why)) return fail(why);
  const trial_result tried = is_deployment ? try_files(asked, after) : trial_result();
  hide(shown);
  if (asked.is_json) {
    std::cout << visible_lines{as_json(found, tried)};
  } else {
    std::cout << as_text(found, tried, is_coloured(asked.colour));
  }
  const difference_counts counts = count(found);
  return counts.added + counts.changed + counts.missing == 0 ? DONE : FOUND;
}

void add_diff(CLI::App& app, int& result) {
  const auto asked = std::make_shared<request>();
  auto* command = app.add_subcommand(
      "diff",
      "Tell what 'replace' of definition files would change and whether it would take them, or how "
      "two dictionaries differ");
  command->add_option("files", asked->files, "Definition files; none or - for standard input");
  add_database_option(*command, asked->database);
  command->add_option(
      "--with", asked->with,
      "Another dictionary in place of files, as tav.conf names it: sqlite:PATH, ...; without a "
      "password, because everybody can read command lines");
  command->add_option("--with-database", asked->with_database,
                      "The other dictionary's database; by default the one of the same number");
  add_at_option(*command, asked->at);
  command->add_option("--to", asked->to,
                      "With --at: compare with the state after this one in place of now");
  command->add_flag("--missing", asked->lists_missing,
                    "List also what the dictionary holds and the files do not");
  add_json_option(*command, asked->is_json);
  add_colour_option(*command, asked->colour);
  command->callback([asked, &result] { result = diff(*asked); });
}

}  // namespace dict
