// drop: deletes fields or classes that nothing needs any more.
#include <memory>

#include "dict/change/change.h"
#include "dict/options.h"
#include "dm/folded.h"

namespace dict {

namespace {

struct request {
  std::vector<std::string> names;
  std::string database;
  bool with_subclasses = false;
  change_options how;
};

}  // namespace

static void want_gone(intended_change& change, dm::change_of what, const std::string& name,
                      dm::key_set& seen) {
  if (seen.insert(dm::folded(name)).second) change.wanted.push_back({what, name, {}});
}

static bool drop_below(intended_change& change, const std::string& name, dm::key_set& seen,
                       dm::problem& why) {
  auto drop = [&](const dm::class_row& row) {
    return want_gone(change, dm::change_of::CLASS, row.name, seen), true;
  };
  dm::store* store = change.from.store.get();
  return store->calls->classes(store, change.from.database.id,
                               {dm::choice::KEYS_BELOW, name.c_str()},
                               dm::visit<dm::class_row>(drop), why);
}

// What is named twice, or stands below what is named, is one thing.
static bool drop_all(dm::change_of what, const request& asked, intended_change& change,
                     dm::problem& why) {
  dm::key_set named, seen;
  for (const std::string& name : asked.names) {
    std::optional<std::string> state;
    if (!named.insert(dm::folded(name)).second) continue;
    if (!find_there(change, what, name, state, why)) return false;
    want_gone(change, what, name, seen);
    if (asked.with_subclasses && !drop_below(change, name, seen, why)) return false;
  }
  return true;
}

static int run(dm::change_of what, const request& asked) {
  dm::problem why;
  intended_change change;
  change.detail = json_object({{"drop", what == dm::change_of::FIELD ? "field" : "class"}});
  if (!begin_change(asked.database, change, why) || !drop_all(what, asked, change, why)) {
    return fail(why);
  }
  return carry_out(change, asked.how);
}

static void add_kind(CLI::App& drop, const char* name, const char* about, dm::change_of what,
                     int& result) {
  const auto asked = std::make_shared<request>();
  auto* command = drop.add_subcommand(name, about);
  command->add_option("NAME", asked->names, "What is deleted")->required();
  if (what == dm::change_of::CLASS) {
    command->add_flag("--with-subclasses", asked->with_subclasses, "And all below it");
  }
  add_change_options(*command, asked->how);
  add_database_option(*command, asked->database);
  command->callback([asked, what, &result] { result = run(what, *asked); });
}

void add_drop(CLI::App& app, int& result) {
  auto* drop = app.add_subcommand("drop", "Delete fields or classes that nothing needs any more");
  drop->require_subcommand(1);
  add_kind(*drop, "field", "Delete fields that no class uses", dm::change_of::FIELD, result);
  add_kind(*drop, "class", "Delete classes that have none below them", dm::change_of::CLASS,
           result);
}

}  // namespace dict
