// rename: another name for a field, in all classes that use it, or for a class and all below it.
#include <memory>

#include "dd/fold.h"
#include "dict/change/change.h"
#include "dict/options.h"
#include "dm/class_outline.h"
#include "dm/folded.h"
#include "dm/rules/class_world.h"
#include "dm/rules/text.h"

namespace dict {

namespace {

struct request {
  std::string old_name, new_name;
  std::string database;
  change_options how;
};

// Definitions that are rewritten, one at a time.
struct rewriting {
  intended_change& change;
  dm::class_reader reader{};
  dm::class_writer writer{};
  dd_flist list{};
  dm::class_def definition{};
};

}  // namespace

static bool is_only_respelled(const request& asked) {
  return dd_equal(asked.old_name.c_str(), asked.new_name.c_str());
}

static bool is_below_itself(const request& asked) {
  const dm::key_range below = dm::keys_below(dm::folded(asked.old_name));
  const std::string key = dm::folded(asked.new_name);
  return below.from <= key && key < below.to;
}

// Refuses a name that cannot be, or that something else has. One that is only spelled differently
// may be the thing's own.
static bool judge_name(intended_change& change, dm::change_of what, const request& asked,
                       dm::problem& why) {
  const bool is_field = what == dm::change_of::FIELD;
  std::optional<std::string> state;
  const char* name = asked.new_name.c_str();
  const char* fault = is_field ? dm::field_name_fault(name) : dm::class_name_fault(name);
  if (fault != nullptr) {
    refuse(change, what, asked.new_name, dm::join({"cannot have this name: it ", fault}));
  }
  if (!is_field && is_below_itself(asked)) {
    refuse(change, what, asked.old_name, "cannot be renamed to a name below its own");
  }
  if (is_only_respelled(asked)) return true;
  if (!dm::present_state(*change.from.store, change.from.database.id, what, name, state, why)) {
    return false;
  }
  if (state) refuse(change, what, asked.new_name, "exists already");
  return true;
}

// Of the thing that was named, whose name is stored as `stored`.
static void note_spelling(intended_change& change, const request& asked, const char* stored) {
  if (dd_equal(stored, asked.new_name.c_str()) && stored != asked.new_name) {
    change.respelled = {stored, asked.new_name};
  }
}

// The old name goes, the new one comes.
static void want(intended_change& change, const request& asked, dm::change_of what,
                 const std::string& old_name, const std::string& name, std::string state) {
  if (!is_only_respelled(asked)) change.wanted.push_back({what, old_name, {}});
  change.wanted.push_back({what, name, std::move(state)});
}

// --- Fields --------------------------------------------------------------------------------------

static bool rename_state(intended_change& change, const request& asked, std::string state,
                         dm::problem& why) {
  dm::field_row row{};
  if (!dm::read_field_state(state, row)) return dm::damaged_record(0, why);
  if ((row.flags & DD_FIELD_PREDEFINED) != 0) {
    refuse(change, dm::change_of::FIELD, asked.old_name, "is predefined and keeps its name");
  }
  note_spelling(change, asked, row.name);
  row.name = asked.new_name.c_str();
  want(change, asked, dm::change_of::FIELD, asked.old_name, asked.new_name, dm::field_state(row));
  return true;
}

static bool rename_entries(rewriting& with, const request& asked, const dm::class_row& row,
                           dm::problem& why) {
  bool is_used = false;
  if (!dm::load_class(with.reader, row, with.list, with.definition, why)) return false;
  for (dm::entry_def& entry : with.definition.entries) {
    if (!dd_equal(dm::text_of(entry, dm::ENTRY_NAME), asked.old_name.c_str())) continue;
    entry.values[dm::ENTRY_NAME] = asked.new_name.c_str();
    is_used = true;
  }
  if (!is_used) return true;
  with.change.wanted.push_back(
      {dm::change_of::CLASS, row.name, std::string(with.writer.write(with.definition))});
  return true;
}

static bool rename_field(const request& asked, intended_change& change, dm::problem& why) {
  std::optional<std::string> state;
  rewriting with{change};
  auto rename = [&](const dm::class_row& row) { return rename_entries(with, asked, row, why); };
  if (!find_there(change, dm::change_of::FIELD, asked.old_name, state, why) ||
      !judge_name(change, dm::change_of::FIELD, asked, why)) {
    return false;
  }
  dm::store* store = change.from.store.get();
  return !state || (rename_state(change, asked, *state, why) &&
                    store->calls->classes(store, change.from.database.id,
                                          {dm::choice::MENTIONING, asked.old_name.c_str()},
                                          dm::visit<dm::class_row>(rename), why) &&
                    !dm::failed(why));
}

// --- Classes -------------------------------------------------------------------------------------

static bool rename_one(rewriting& with, const request& asked, const dm::class_row& row,
                       dm::problem& why) {
  const std::string name = asked.new_name + std::string(row.name).substr(asked.old_name.size());
  if (!dm::load_class(with.reader, row, with.list, with.definition, why)) return false;
  if (name == asked.new_name) note_spelling(with.change, asked, row.name);
  with.definition.values[dm::CLASS_NAME] = name.c_str();
  want(with.change, asked, dm::change_of::CLASS, row.name, name,
       std::string(with.writer.write(with.definition)));
  return true;
}

static bool rename_class(const request& asked, intended_change& change, dm::problem& why) {
  std::optional<std::string> state;
  rewriting with{change};
  auto rename = [&](const dm::class_row& row) { return rename_one(with, asked, row, why); };
  if (!find_there(change, dm::change_of::CLASS, asked.old_name, state, why) ||
      !judge_name(change, dm::change_of::CLASS, asked, why)) {
    return false;
  }
  dm::store* store = change.from.store.get();
  for (const auto which : {dm::choice::NAMED, dm::choice::BELOW}) {
    if (!store->calls->classes(store, change.from.database.id, {which, asked.old_name.c_str()},
                               dm::visit<dm::class_row>(rename), why) ||
        dm::failed(why)) {
      return false;
    }
  }
  return true;
}

// --- The command ---------------------------------------------------------------------------------

static int run(dm::change_of what, const request& asked) {
  dm::problem why;
  intended_change change;
  const bool is_field = what == dm::change_of::FIELD;
  change.detail = json_object(
      {{"rename", is_field ? "field" : "class"}, {"from", asked.old_name}, {"to", asked.new_name}});
  if (!begin_change(asked.database, change, why) ||
      !(is_field ? rename_field : rename_class)(asked, change, why)) {
    return fail(why);
  }
  return carry_out(change, asked.how);
}

static void add_kind(CLI::App& rename, const char* name, const char* about, dm::change_of what,
                     int& result) {
  const auto asked = std::make_shared<request>();
  auto* command = rename.add_subcommand(name, about);
  command->add_option("OLD", asked->old_name, "Its name")->required();
  command->add_option("NEW", asked->new_name, "Its name from now on")->required();
  add_change_options(*command, asked->how);
  add_database_option(*command, asked->database);
  command->callback([asked, what, &result] { result = run(what, *asked); });
}

void add_rename(CLI::App& app, int& result) {
  auto* rename = app.add_subcommand("rename", "Give a field or a class another name");
  rename->require_subcommand(1);
  add_kind(*rename, "field", "Another name for a field, also in the classes that use it",
           dm::change_of::FIELD, result);
  add_kind(*rename, "class", "Another name for a class, and so for all below it",
           dm::change_of::CLASS, result);
}

}  // namespace dict
