// The command.
#include "dict/site/site.h"

#include <algorithm>
#include <iostream>
#include <map>
#include <memory>

#include "dd/database_number.h"
#include "dd/report.h"
#include "deploy/modes.h"
#include "dict/commands.h"
#include "dict/database_files.h"
#include "dict/options.h"
#include "dict/terminal/visible.h"
#include "dm/open.h"

namespace dict {

namespace {

struct request {
  std::string folder;
  std::string title = "Data dictionary";
  std::string database;
  std::string at;  // a point in the journal; empty: now
  std::vector<std::string> files;
  bool all = false;  // databases
};

}  // namespace

static bool is_possible(const request& asked, dm::problem& why) {
  const bool chooses = asked.all || !asked.database.empty() || !asked.at.empty();
  if (!asked.files.empty() && chooses) {
    why.sentence =
        "Pages tell either of definition files, or of the dictionary, of which -d, --all and --at "
        "choose something.";
  } else if (asked.all && !asked.database.empty()) {
    why.sentence = "Either one database can be chosen (-d), or all of them (--all).";
  } else if (asked.files.size() > deploy::MAX_NAMES) {
    why.sentence = dm::join({"At most ", std::to_string(deploy::MAX_NAMES), " files can be read."});
  }
  return why.sentence.empty();
}

// --- Gathering -----------------------------------------------------------------------------------

// Folders of a server are nobody's business, and the same pages come of every working folder.
static std::string without_folders(const std::string& path) {
  return path.substr(path.rfind('/') + 1);
}

static std::string name_of(const reading& from) {
  const std::string name = from.store->calls->name(from.store.get());
  const bool is_file = from.settings.dictionary.starts_with("sqlite:");
  return is_file ? without_folders(name) : name;
}

static bool gather_files(const request& asked, std::vector<site_source>& sources,
                         dm::problem& why) {
  site_source& source = sources.emplace_back();
  for (const std::string& file : asked.files) {
    source.dictionary.append(source.dictionary.empty() ? "" : ", ").append(without_folders(file));
  }
  if (read_files(asked.files, source.all)) return true;
  why.sentence = "The definition files have errors; no page was written.";
  return false;
}

static bool find_databases(const request& asked, reading& from,
                           std::vector<dm::database_row>& found, dm::problem& why) {
  const auto begin = asked.at.empty() ? begin_reading : begin_past;
  if (!begin(asked.database, from, why)) return false;
  if (!asked.all) return found.push_back(from.database), true;
  auto add = [&](const dm::database_row& row) { return found.push_back(row), true; };
  return from.store->calls->databases(from.store.get(), dm::visit<dm::database_row>(add), why);
}

// Adds databases that there were at the record and that were deleted since.
static bool add_deleted(dm::store& store, int64_t record, std::vector<dm::database_row>& found,
                        dm::problem& why) {
  std::map<std::string, bool> were_there;  // by the first record that tells of their end or begin
  const auto look = [&](const dm::journal_record& row) {
    const bool is_end = row.kind == dm::journal_kind::DROP_DATABASE;
    if (is_end || row.kind == dm::journal_kind::ADD_DATABASE) {
      were_there.try_emplace(row.database, is_end);
    }
    return true;
  };
  if (!dm::walk_records(store, {record + 1}, look, why)) return false;
  for (const auto& [text, was_there] : were_there) {
    uint64_t number = 0;
    const auto is_it = [&](const dm::database_row& row) { return row.number == number; };
    if (!dd_read_database(text.c_str(), number)) return dm::damaged_record(0, why);
    if (!was_there || std::ranges::any_of(found, is_it)) continue;
    found.push_back({DELETED_DATABASE, number, 0});
  }
  return true;
}

// The record that the pages are as of, and the databases that were there only then.
static bool find_then(const request& asked, reading& from, int64_t& record,
                      std::vector<dm::database_row>& found, dm::problem& why) {
  if (asked.at.empty()) return true;
  if (!asked.all) return find_point_of(from, asked.at, record, why);
  return find_point(*from.store, asked.at, record, why) &&
         add_deleted(*from.store, record, found, why);
}

static bool gather_dictionary(const request& asked, std::vector<site_source>& sources,
                              dm::problem& why) {
  reading from;
  std::vector<dm::database_row> databases;
  int64_t record = std::numeric_limits<int64_t>::max();
  if (!find_databases(asked, from, databases, why) ||
      !find_then(asked, from, record, databases, why)) {
    return false;
  }
  for (const dm::database_row& database : databases) {
    site_source& source = sources.emplace_back();
    source.dictionary = name_of(from);
    source.database = dd_database_text(database.number);
    source.at = asked.at;
    from.database = database;
    if (!read_past(from, record, source, why)) return false;
  }
  return true;
}

// --- The command ---------------------------------------------------------------------------------

static size_t size_of(const std::vector<site_file>& files) {
  size_t size = 0;
  for (const site_file& file : files) size += file.text.size();
  return size;
}

// What the writer says ends with a line end or without.
static void tell(const std::vector<std::string>& faults) {
  for (const std::string& fault : faults) {
    const std::string_view line(fault.data(), fault.find_last_not_of('\n') + 1);
    std::cerr << visible{line} << '\n';
  }
}

static bool write(const request& asked, std::vector<site_source>& sources, dm::problem& why) {
  std::vector<site_file> files;
  std::vector<std::string> faults;
  dd_take_errors(&faults);
  const bool is_made = make_site(asked.title, sources, files, why);
  dd_take_errors(nullptr);
  for (site_source& source : sources) source.all.fields.leave(), source.all.classes.leave();
  if (!is_made) tell(faults);
  if (!is_made || !replace_folder(asked.folder, files, why)) return false;
  std::cout << "Wrote " << visible{asked.folder} << ": " << files.size() << " files, "
            << (size_of(files) + 1023) / 1024 << " KB. Open index.html in a browser.\n";
  return true;
}

static int run(const request& asked) {
  dm::problem why;
  std::vector<site_source> sources;
  if (!is_possible(asked, why) || !spares_companions(asked.folder, why)) return fail(why);
  tav_err_set_level(0);  // the logs are about deployments: what is said here is told at once
  const bool is_gathered =
      (asked.files.empty() ? gather_dictionary : gather_files)(asked, sources, why);
  return is_gathered && write(asked, sources, why) ? DONE : fail(why);
}

void add_site(CLI::App& app, int& result) {
  const auto asked = std::make_shared<request>();
  auto* command = app.add_subcommand(
      "site", "Write pages to look at the dictionary with a browser, without a server");
  command->add_option("FOLDER", asked->folder, "A new folder, or one with earlier pages")
      ->required();
  command->add_option("FILE", asked->files, "Definition files, in place of the dictionary");
  add_database_option(*command, asked->database);
  command->add_flag("--all", asked->all, "All databases");
  add_at_option(*command, asked->at);
  command->add_option("--title", asked->title, "What the pages are called");
  command->callback([asked, &result] { result = run(*asked); });
}

}  // namespace dict
