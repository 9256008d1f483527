// drop-database: deletes a database with all that it holds, after a backup of the dictionary.
#include "dm/changes/drop_database.h"

#include <iostream>
#include <memory>

#include "dd/database_number.h"
#include "dict/backup.h"
#include "dict/change/change.h"
#include "dict/history/moments.h"
#include "dict/terminal/question.h"
#include "dict/terminal/visible.h"

namespace dict {

namespace {

struct request {
  std::string database;
  std::string backup;
  change_options how;
};

// What goes.
struct database_content {
  std::string number{};
  int64_t fields = 0;  // without the predefined ones
  int64_t classes = 0;
  int64_t tables = 0;
  dm::journal_record last{};  // that changed it
};

struct dropping {
  const request& asked;
  intended_change change{};
  database_content content{};
  dm::change_result result{};
  bool is_done = false;
};

}  // namespace

// --- What there is -------------------------------------------------------------------------------

static bool find_last(dropping& at, dm::problem& why) {
  const auto look = [&](const dm::journal_record& record) {
    const bool is_it = record.database == at.content.number;
    if (is_it) at.content.last = record;
    return !is_it;
  };
  dm::journal_range range;
  range.newest_first = true;
  return dm::walk_records(*at.change.from.store, range, look, why);
}

static bool find_content(dropping& at, dm::problem& why) {
  dm::store* store = at.change.from.store.get();
  const int64_t id = at.change.from.database.id;
  database_content& found = at.content;
  found.number = dd_database_text(at.change.from.database.number);
  auto field = [&](const dm::field_row& row) {
    return found.fields += (row.flags & DD_FIELD_PREDEFINED) == 0, true;
  };
  auto table = [&](const dm::table_row&) { return ++found.tables, true; };
  return store->calls->fields(store, id, {}, dm::visit<dm::field_row>(field), why) &&
         store->calls->count(store, id, dm::counted::CLASSES, found.classes, why) &&
         store->calls->tables(store, id, {}, dm::visit<dm::table_row>(table), why) &&
         find_last(at, why);
}

// --- Telling -------------------------------------------------------------------------------------

static std::string counted(int64_t count, const char* one, const char* many) {
  return dm::join({std::to_string(count), " ", count == 1 ? one : many});
}

static void print_content(const dropping& at) {
  const database_content& found = at.content;
  const dm::journal_record& last = found.last;
  std::cout << "Database " << found.number << " holds " << counted(found.fields, "field", "fields")
            << " of its own, " << counted(found.classes, "class", "classes") << " and "
            << counted(found.tables, "table", "tables") << ".\n";
  if (last.number == 0) return;
  std::cout << "It was changed last by deployment " << last.deployment << " of "
            << local_time(last.time) << " by " << visible{last.os_user} << '@'
            << visible{last.os_host} << ".\n";
}

static bool is_of_login(const dropping& at) {
  const dm::settings& settings = at.change.from.settings;
  return settings.has_login && settings.database == at.change.from.database.number;
}

static void tell_content(const dropping& at) {
  print_content(at);
  std::cout.flush();
  if (!is_of_login(at)) return;
  std::cerr << "tav_dict: Note: The entry 'userid' of tav.conf names this database: whoever logs "
               "in with it will find none.\n";
}

static void print_json(const dropping& at) {
  json_page page;
  const bool is_trial = at.asked.how.is_trial;
  page.out.StartObject();
  put_flag(page.out, "dry_run", is_trial);
  put_flag(page.out, "done", at.is_done);
  put_number(page.out, "deployment", at.is_done ? at.result.record : 0);
  put_array(page.out, "refused", at.result.refused, put_refused);
  put_member(page.out, "database", at.content.number);
  put_number(page.out, "fields", at.content.fields);
  put_number(page.out, "classes", at.content.classes);
  put_number(page.out, "tables", at.content.tables);
  put_member(page.out, "backup", at.is_done ? at.asked.backup : "");
  page.out.EndObject();
  print(page);
}

static int tell_end(const dropping& at) {
  const bool is_json = at.asked.how.is_json;
  if (is_json) print_json(at);
  if (dm::failed(at.result.failure)) return fail(at.result.failure);
  if (!is_json && !at.result.refused.empty()) print_refused(at.result.refused);
  if (!at.result.refused.empty()) return FOUND;
  if (is_json) return DONE;
  if (at.is_done) {
    std::cout << "Deleted database " << at.content.number << ": this is deployment "
              << at.result.record << ".\n";
  } else {
    std::cout << "Nothing was changed: this was a dry run.\n";
  }
  return DONE;
}

// --- Doing ---------------------------------------------------------------------------------------

static bool carry_out(dropping& at, bool is_trial) {
  dm::change_purpose purpose;
  purpose.is_trial = is_trial;
  purpose.seen_end = at.change.seen_end;
  return dm::drop_database(*at.change.from.store, at.change.from.settings,
                           at.change.from.database.number, purpose, at.result);
}

// In a snapshot of its own: what is deleted then is refused where it is not what the backup has.
static bool save(dropping& at, dm::problem& why) {
  dm::store* store = at.change.from.store.get();
  progress shown("copying rows");
  const bool is_saved =
      store->calls->begin(store, false, why) && write_backup(*store, at.asked.backup, shown, why);
  hide(shown);
  store->calls->rollback(store);
  if (is_saved && !at.asked.how.is_json) {
    std::cout << "Wrote backup " << visible{at.asked.backup} << ".\n";
    std::cout.flush();
  }
  return is_saved;
}

static bool is_meant(const dropping& at, dm::problem& why) {
  if (at.asked.how.is_sure) return true;
  if (!may_ask(at.asked.how, why)) return false;
  if (agrees("Write the backup, and delete all that? It cannot be undone.")) return true;
  why.sentence = "Nothing was changed.";
  return false;
}

static int run(const request& asked) {
  dm::problem why;
  dropping at{asked};
  if (asked.backup.empty() && !asked.how.is_trial) {
    why.sentence = "'drop-database' cannot be undone: name a new file for a backup with --backup.";
    return fail(why);
  }
  if (!begin_change(asked.database, at.change, why) || !find_content(at, why)) return fail(why);
  if (!carry_out(at, true)) return tell_end(at);
  if (!asked.how.is_json) tell_content(at);
  if (asked.how.is_trial) return tell_end(at);
  if (!is_meant(at, why) || !save(at, why)) return fail(why);
  at.is_done = carry_out(at, false);
  return tell_end(at);
}

void add_drop_database(CLI::App& app, int& result) {
  const auto asked = std::make_shared<request>();
  auto* command = app.add_subcommand("drop-database",
                                     "Delete a database with all that it holds, after a backup");
  command->add_option("number", asked->database, "Its number, N.N.N.N")->required();
  command->add_option("--backup", asked->backup, "The backup of the dictionary: a new file");
  add_change_options(*command, asked->how);
  command->callback([asked, &result] { result = run(*asked); });
}

}  // namespace dict
