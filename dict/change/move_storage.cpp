// move-storage: another table or column for a class or an entry, which 'replace' would keep.
#include <memory>

#include "dd/buf_storage.h"
#include "dd/class_names.h"
#include "dd/fold.h"
#include "dict/change/change.h"
#include "dict/options.h"
#include "dm/folded.h"
#include "dm/rules/class_rules.h"
#include "dm/rules/text.h"

namespace dict {

namespace {

struct request {
  std::string place;
  std::string table, column;
  std::string database;
  change_options how;
};

// The class that the place names, with what follows the name: the way to an entry.
struct found_place {
  std::string name{};
  std::optional<std::string> path{};  // none: the class itself
  dm::class_reader reader{};
  dd_flist list{};
  dm::class_def definition{};
  bool is_there = false;
};

}  // namespace

static bool load(intended_change& change, const std::string& name, found_place& at,
                 dm::problem& why) {
  auto take = [&](const dm::class_row& row) {
    at.is_there = dm::load_class(at.reader, row, at.list, at.definition, why);
    at.name = row.name;
    return true;
  };
  dm::store* store = change.from.store.get();
  return store->calls->classes(store, change.from.database.id, {dm::choice::NAMED, name.c_str()},
                               dm::visit<dm::class_row>(take), why) &&
         !dm::failed(why);
}

// Names may hold dots themselves: the longest class name that fits is it.
static bool find_place(intended_change& change, const std::string& place, found_place& at,
                       dm::problem& why) {
  for (size_t end = place.size(); !at.is_there && end != place.npos && end > 0;
       end = place.rfind('.', end - 1)) {
    if (!load(change, place.substr(0, end), at, why)) return false;
    if (at.is_there && end < place.size()) at.path = place.substr(end + 1);
  }
  if (!at.is_there) refuse(change, dm::change_of::CLASS, place, "does not exist");
  return true;
}

static dm::entry_def* find_entry(found_place& at) {
  for (dm::entry_def& entry : at.definition.entries) {
    if (dd_equal(dm::path_of(at.definition, entry).c_str(), at.path->c_str())) return &entry;
  }
  return nullptr;
}

// What is wrong with the options for this class or entry; null when nothing is.
static const char* fault_of(const request& asked, const found_place& at,
                            const dm::entry_def* entry) {
  const bool is_buf = entry != nullptr && entry->type == TAV_FLDT_BUF;
  const bool has_column = entry != nullptr && !dd_is_container(entry->type);
  if (!asked.column.empty() && !has_column) return "has a table and no column: use --table";
  if (!asked.table.empty() && has_column && !is_buf) {
    return "has a column and no table: use --column";
  }
  if (entry == nullptr && dd_is_subclass(at.name.c_str())) {
    return "has no table of its own: it is kept in that of its base class";
  }
  return nullptr;
}

// "Entry 'F_A' of class '/a' FAULT."
static void refuse_place(intended_change& change, const found_place& at, std::string_view fault) {
  if (!at.path) return refuse(change, dm::change_of::CLASS, at.name, fault);
  dm::problem why;
  why.sentence = dm::join(
      {"Entry ", dm::quoted(*at.path), " of class ", dm::quoted(at.name), " ", fault, "."});
  change.refused.push_back({why, dm::change_of::CLASS, at.name, {}});
}

// Refuses names that no definition file could hold. Gives whether none was refused.
static bool judge_names(const request& asked, intended_change& change, const found_place& at,
                        const dm::entry_def* entry) {
  const bool is_buf = entry != nullptr && entry->type == TAV_FLDT_BUF;
  for (const auto& [kind, name] : {std::pair("cannot have the table ", &asked.table),
                                   {"cannot have the column ", &asked.column}}) {
    const char* fault = dm::storage_name_fault(name->c_str(), is_buf);
    if (fault == nullptr) continue;
    refuse_place(change, at, dm::join({kind, dm::quoted(*name), ": it ", fault}));
  }
  return change.refused.empty();
}

static std::string storage_of(const request& asked, const dm::entry_def& entry) {
  if (entry.type != TAV_FLDT_BUF) return asked.column.empty() ? asked.table : asked.column;
  const dd_buf_storage old = dm::storage_of_buf(dm::text_of(entry, dm::ENTRY_SQL_NAME));
  const std::string column(asked.column.empty() ? old.column : asked.column);
  const std::string table(asked.table.empty() ? old.table : asked.table);
  return dm::join({DD_COLUMN_MARK, column, " ", DD_TABLE_MARK, table});
}

static bool is_movable(const request& asked, intended_change& change, const found_place& at,
                       const dm::entry_def* entry) {
  if (at.path && entry == nullptr) return refuse_place(change, at, "does not exist"), false;
  if (const char* fault = fault_of(asked, at, entry)) {
    return refuse_place(change, at, fault), false;
  }
  return judge_names(asked, change, at, entry);
}

// A name that is spelled differently is none that differs.
static void note_move(intended_change& change, const char* old_name, const std::string& name) {
  if (old_name == name) return;
  if (dd_equal(old_name, name.c_str())) {
    change.respelled = {old_name, name};
  } else {
    change.notes.emplace_back(
        "What a server keeps in the old place does not move with it: move that data there, too.");
  }
}

static bool move(const request& asked, intended_change& change, dm::problem& why) {
  found_place at;
  if (!find_place(change, asked.place, at, why)) return false;
  if (!at.is_there) return true;
  dm::entry_def* entry = at.path ? find_entry(at) : nullptr;
  if (!is_movable(asked, change, at, entry)) return true;
  const std::string storage = entry != nullptr ? storage_of(asked, *entry) : asked.table;
  const void*& place =
      entry != nullptr ? entry->values[dm::ENTRY_SQL_NAME] : at.definition.values[dm::CLASS_TABLE];
  if (place != nullptr) note_move(change, static_cast<const char*>(place), storage);
  place = storage.c_str();
  dm::class_writer writer;
  change.wanted.push_back(
      {dm::change_of::CLASS, at.name, std::string(writer.write(at.definition))});
  return true;
}

static int run(const request& asked) {
  dm::problem why;
  intended_change change;
  if (asked.table.empty() && asked.column.empty()) {
    why.sentence = "'move-storage' takes --table, or --column, or both for a BUF entry.";
    return fail(why);
  }
  change.detail = json_object({{"move-storage", asked.place}});
  if (!begin_change(asked.database, change, why) || !move(asked, change, why)) return fail(why);
  return carry_out(change, asked.how);
}

void add_move_storage(CLI::App& app, int& result) {
  const auto asked = std::make_shared<request>();
  auto* command = app.add_subcommand("move-storage",
                                     "Name another table or column, which 'replace' would keep");
  command->add_option("PLACE", asked->place, "A class, or an entry: CLASS.ENTRY.ENTRY")->required();
  command->add_option("--table", asked->table, "The table of the class, array or substruct");
  command->add_option("--column", asked->column, "The column of the entry");
  add_change_options(*command, asked->how);
  add_database_option(*command, asked->database);
  command->callback([asked, &result] { result = run(*asked); });
}

}  // namespace dict
