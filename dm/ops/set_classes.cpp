// 578: adds and replaces classes in the order of the list; all or nothing.
#include <algorithm>
#include <cstring>
#include <map>
#include <optional>

#include "dm/ops/dropped.h"
#include "dm/ops/operations.h"
#include "dm/rules/class_rules.h"

namespace dm {

namespace {

// The class that a class of the list replaces.
struct old_class {
  int64_t id = 0;  // 0: there is none; -1: one that is earlier in the list of a trial
  int64_t stamp = 0;
  std::string text;      // its definition as JSON
  bool is_same = false;  // the class would be stored in just that way; then the rest is not read
  dd_flist list;         // that the definition borrows its values from
  class_def definition;
};

// A class that the list holds twice: the journal gets one change of it.
struct repeated_class {
  std::string name;
  std::optional<std::string> before;
  std::string after;
};

// One run of the operation. A real one writes each class at once, so that the next is checked
// against what the store then holds. A trial writes nothing; it keeps the definitions that a later
// class of the list replaces.
struct class_run {
  operation& op;
  const database_row& database;
  bool is_trial;
  class_world world;
  class_writer writer{};
  class_reader reader{};
  key_set dropped{};             // by other sessions since the fetch
  key_set repeated{};            // folded names that the list holds twice
  key_map<std::string> tried{};  // their definitions, in a trial
  // In a real run: their definitions before the first and after the last of the list.
  std::map<std::string, repeated_class> rewritten{};
  bool has_written = false;
  bool changes_any = false;
  class_def definition{};  // of the class that set_class works on, as are the tables
  std::vector<std::string> tables{};
  std::vector<std::string> notes{};
};

}  // namespace

// For more classes than this all keys are read at once (with a local file; sooner on a server).
static constexpr uint32_t MANY = 200;

static void find_repeated(class_run& run) {
  dd_index<dd_by_name, int64_t> names;
  uint32_t position = 0;
  int32_t id = 0;
  for (int64_t place = 0;; ++place) {
    const tav_node* node = tav_node_next(run.op.input, TAV_FLD_OBJ_DESC, &position, &id);
    if (node == nullptr) return;
    const auto* name = static_cast<const char*>(tav_node_get(node, TAV_FLD_NAME));
    if (name != nullptr && names.add_first(name, place) != place) run.repeated.insert(folded(name));
  }
}

// Finds the row of the class that one of that name would replace; false when the store fails.
static bool find_old(class_run& run, const char* name, old_class& old) {
  const auto tried = run.tried.find(folded(name));
  store* store = run.op.session.store.get();
  auto note = [&](const class_row& row) {
    old.id = row.id;
    old.stamp = row.stamp;
    old.text = tried != run.tried.end() ? tried->second : row.definition;
    return true;
  };
  const choice named{choice::NAMED, name};
  if (tried != run.tried.end()) {
    old.text = tried->second;
    old.id = -1;
  } else if (!run.world.has_class(name)) {
    return true;
  } else if (!store->calls->classes(store, run.database.id, named, visit<class_row>(note),
                                    run.op.why)) {
    return false;
  }
  return true;
}

// Reads its definition; false where that is damaged.
static bool read_old(class_run& run, old_class& old) {
  const char* name = text_of(run.definition, CLASS_NAME);
  const class_row row{old.id, "", name, old.stamp, old.text.c_str()};
  return load_class(run.reader, row, old.list, old.definition, run.op.why);
}

// Compares the class with the one that it would replace, which is read where it differs.
static bool compare_with_old(class_run& run, old_class& old) {
  old.is_same = old.id != 0 && old.text == run.writer.write(run.definition);
  return old.id == 0 || old.is_same || read_old(run, old);
}

// A subclass's own table is not stored.
static void drop_own_table(class_run& run) {
  const char* table = needless_table(run.definition);
  if (table == nullptr) return;
  run.notes.push_back(join({"Subclass ", quoted(text_of(run.definition, CLASS_NAME)),
                            " needs no table: its table ", quoted(table), " is not stored."}));
  run.definition.values[CLASS_TABLE] = nullptr;
}

static bool conflict(class_run& run, std::string_view fault) {
  findings conflict;
  blame(run.definition, TAV_ERR_CONFLICT, TAV_FLD_NAME, fault, conflict);
  run.op.why = conflict.front();
  return false;
}

// Whether no other session has written or deleted the class since this one fetched.
static bool may_set(class_run& run, const char* name, const old_class& old) {
  if (old.id == 0 && was_dropped(run.dropped, change_of::CLASS, name)) {
    return conflict(run, WAS_DROPPED);
  }
  const bool is_ours = old.id <= 0 || old.stamp > run.database.counter;  // from earlier in the list
  return is_ours ||
         !is_foreign(run.op.session, run.database.number, &seen_database::classes, old.stamp) ||
         conflict(run,
                  "was written by another session since this one fetched the classes; run again");
}

static bool is_sound(class_run& run) {
  findings found;
  check_class(run.definition, run.world, run.tables, found);
  if (run.world.why.code != TAV_ERR_NONE) {
    run.op.why = run.world.why;
    return false;
  }
  if (!found.empty()) run.op.why = found.front();
  return found.empty();
}

static bool write_tables(class_run& run, int64_t id, const std::vector<std::string>& old_tables) {
  store* store = run.op.session.store.get();
  key_set kept;
  key_set wanted;
  for (const std::string& table : run.tables) wanted.insert(folded(table));
  for (const std::string& table : old_tables) {
    if (wanted.count(folded(table)) != 0) {
      kept.insert(folded(table));
    } else if (!store->calls->delete_table(store, run.database.id, table.c_str(), run.op.why)) {
      return false;
    }
  }
  for (const std::string& table : run.tables) {
    const std::string key = folded(table);
    const table_row row{key.c_str(), table.c_str(), id};
    if (kept.count(key) != 0) continue;
    if (!store->calls->add_table(store, run.database.id, row, run.op.why)) return false;
  }
  return true;
}

static bool note_class(operation& op, const std::string& name, const std::string* before,
                       std::string_view after) {
  const std::string_view old = before != nullptr ? std::string_view(*before) : std::string_view();
  return note_change(op.session, change_of::CLASS, name,
                     {before != nullptr ? &old : nullptr, &after}, op.why);
}

static bool note_written(class_run& run, const std::string& key, const old_class& old,
                         const std::string& name, std::string_view text) {
  const std::string* before = old.id != 0 ? &old.text : nullptr;
  if (run.repeated.count(key) == 0) return note_class(run.op, name, before, text);
  const auto [at, is_first] = run.rewritten.try_emplace(key);
  if (is_first && before != nullptr) at->second.before = *before;
  if (is_first) at->second.name = name;
  at->second.after = text;
  return true;
}

static void tell_accepted(class_run& run, const old_class& old) {
  const auto& watch = run.op.session.watch;
  if (!watch) return;
  const std::string* before = old.id != 0 ? &old.text : nullptr;
  watch({run.definition, before, run.writer.write(run.definition), run.tables});
}

static bool is_unchanged(class_run& run, const old_class& old) {
  return old.is_same || (old.id != 0 && old.text == run.writer.write(run.definition));
}

// An unchanged class is not written.
static bool write_class(class_run& run, const old_class& old,
                        const std::vector<std::string>& old_tables) {
  if (is_unchanged(run, old)) return true;
  const std::string_view text = run.writer.write(run.definition);
  const char* name = text_of(run.definition, CLASS_NAME);
  const std::string key = folded(name);
  class_row row{old.id, key.c_str(), name, run.database.counter + 1, text.data()};
  store* store = run.op.session.store.get();
  run.has_written = true;
  if (!note_written(run, key, old, name, text)) return false;
  return store->calls->put_class(store, run.database.id, row, run.op.why) &&
         write_tables(run, row.id, old_tables);
}

static void note_tried(class_run& run, const old_class& old) {
  const std::string key = folded(text_of(run.definition, CLASS_NAME));
  if (!is_unchanged(run, old)) run.changes_any = true;
  if (run.repeated.count(key) != 0) run.tried[key] = run.writer.write(run.definition);
}

// What the class keeps of the one that it replaces.
static void keep_old(class_run& run, const old_class& old) {
  if (old.id == 0 || old.is_same) return;
  const std::string name = quoted(text_of(run.definition, CLASS_NAME));
  for (const std::string& path : keep_old(run.definition, old.definition)) {
    run.notes.push_back(
        join({"Class ", name, " is replaced without its field ", quoted(path), "."}));
  }
}

// Damage is told before what else is wrong, also where it did not have to be found.
static bool refuse_class(class_run& run, old_class& old) {
  if (old.is_same) read_old(run, old);
  return false;
}

static std::vector<std::string> tables_of(const class_run& run, const old_class& old) {
  if (old.id == 0) return {};
  return tables_of(old.is_same ? run.definition : old.definition);
}

static bool set_class(class_run& run, const tav_node* node, int32_t id) {
  read_class(node, id, run.definition);
  run.world.prefetch_fields(run.definition);
  old_class old;
  const char* name = text_of(run.definition, CLASS_NAME);
  if (!find_old(run, name, old)) return false;
  drop_own_table(run);
  if (!compare_with_old(run, old)) return false;
  if (!may_set(run, name, old)) return refuse_class(run, old);
  keep_old(run, old);
  if (!is_sound(run)) return refuse_class(run, old);
  const std::vector<std::string> old_tables = tables_of(run, old);
  run.world.accept(run.definition, run.tables, old_tables);
  tell_accepted(run, old);
  if (!run.is_trial) return write_class(run, old, old_tables);
  note_tried(run, old);
  return true;
}

static bool set_all(class_run& run) {
  const field_plan& pending = run.op.session.trial.pending;
  if (pending.database.id == run.database.id) run.world.add_fields(pending.asked);
  find_repeated(run);
  if (!find_dropped(run.op.session, run.database, &seen_database::classes, run.dropped,
                    run.op.why)) {
    return false;
  }
  const uint32_t cost = run.op.session.store->look_up_cost;
  if (tav_node_count(run.op.input, TAV_FLD_OBJ_DESC) > MANY / cost && !run.world.read_all()) {
    run.op.why = run.world.why;
    return false;
  }
  uint32_t position = 0;
  int32_t id = 0;
  while (const tav_node* node = tav_node_next(run.op.input, TAV_FLD_OBJ_DESC, &position, &id)) {
    if (!set_class(run, node, id)) return false;
  }
  return true;
}

static bool finish(class_run& run) {
  operation& op = run.op;
  store* store = op.session.store.get();
  const int64_t stamp = run.database.counter + 1;
  if (run.has_written && !store->calls->set_counter(store, run.database.id, stamp, op.why)) {
    return false;
  }
  for (const auto& [key, each] : run.rewritten) {
    if (!note_class(op, each.name, each.before ? &*each.before : nullptr, each.after)) return false;
  }
  if (!commit_write(op.session, journal_kind::CLASSES, run.database.number, op.why)) return false;
  if (run.has_written) note_own(op.session, run.database.number, stamp);
  op.notes = std::move(run.notes);
  return true;
}

// A trial that found the dictionary to hold all that was sent spares the real operations their
// judgement. Without memory for the notes they judge again.
static void note_held(class_run& run) {
  trial& trial = run.op.session.trial;
  const auto& asked = trial.pending.asked.fields;
  const auto is_planned = [](const asked_field& field) { return field.is_planned; };
  if (run.changes_any || std::any_of(asked.begin(), asked.end(), is_planned)) return;
  trial.classes = {dd_flist(tav_flist_copy(run.op.list, nullptr)), run.database.number,
                   run.database.counter, std::move(run.notes)};
  if (asked.empty()) return;
  trial.fields = {dd_flist(tav_flist_copy(trial.pending.request.get(), nullptr)),
                  trial.pending.target,
                  trial.pending.database.counter,
                  {}};
}

static bool set_or_know(class_run& run) {
  const held_list& held = run.op.session.trial.classes;
  const bool is_held =
      !run.is_trial && holds_all(held, run.op.input, TAV_FLD_OBJ_DESC, run.database);
  if (!is_held) return set_all(run);
  run.notes = held.notes;
  return true;
}

dd_flist set_classes(operation& op) {
  if (!op.session.settings.objects_writeable) return refuse_writes(op, "objects_writeable");
  if ((op.flags & ~static_cast<uint32_t>(TCM_OPFLG_TRIAL)) != 0) {
    return refuse(op, TAV_ERR_BAD_ARG, 0,
                  join({"There are no flags ", std::to_string(op.flags), "."}));
  }
  database_row database{};
  const bool is_trial = op.flags != 0;
  if (!(is_trial ? begin_trial : begin_write)(op.session, op.why)) return nullptr;
  if (!find_database(op.session, op.input, 1, database, op.why)) return nullptr;
  class_run run{op, database, is_trial, class_world(*op.session.store, database.id)};
  dd_flist output = nothing_to_give(op);  // before the commit: after it nothing may fail
  if (output == nullptr || !set_or_know(run) || (!is_trial && !finish(run))) return nullptr;
  if (is_trial) note_held(run);
  return output;
}

}  // namespace dm
