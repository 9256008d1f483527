#include "dm/changes/plan.h"

#include "dm/folded.h"
#include "dm/rules/class_rules.h"

namespace dm {

// For more fields than this all are read at once (with a local file; sooner on a server).
static constexpr size_t MANY = 200;

void refuse(change_result& result, change_of what, std::string_view name, problem why,
            const std::string& user) {
  result.refused.push_back({std::move(why), what, std::string(name), {}, user});
}

// --- Fields --------------------------------------------------------------------------------------

static bool read_state(const std::optional<std::string>& state, std::string& text, field_row& row) {
  if (state) text = *state;
  return !state || read_field_state(text, row);
}

static void note_stored(change_plan& plan, const field_row& row) {
  const auto at = plan.fields.find(folded(row.name));
  if (at == plan.fields.end()) return;
  at->second.before = field_state(row);
  if (!at->second.after) at->second.name = row.name;
}

static bool look_up_fields(store& store, change_plan& plan, problem& why) {
  auto note = [&](const field_row& row) { return note_stored(plan, row), true; };
  const auto noting = visit<field_row>(note);
  const int64_t id = plan.database.id;
  if (plan.fields.size() * store.look_up_cost > MANY) {
    return store.calls->fields(&store, id, {}, noting, why);
  }
  for (const auto& [key, field] : plan.fields) {
    if (!store.calls->fields(&store, id, {choice::NAMED, key.c_str()}, noting, why)) return false;
  }
  return true;
}

static void refuse_state(change_result& result, change_of what, const std::string& name) {
  refuse(result, what, name,
         {TAV_ERR_BAD_VALUE, 0, 0, 0,
          join({told_thing(what, name),
                " cannot become what is wanted: that is no definition of "
                "it."})});
}

static void finish_fields(change_plan& plan, change_result& result) {
  std::erase_if(plan.fields,
                [](const auto& each) { return each.second.before == each.second.after; });
  for (auto& [key, field] : plan.fields) {
    const bool is_read = read_state(field.before, field.before_text, field.old) &&
                         read_state(field.after, field.after_text, field.row);
    const bool is_sound = is_read && (!field.after || folded(field.row.name) == key);
    if (!is_sound) refuse_state(result, change_of::FIELD, field.name);
    if (is_sound && field.after) field.name = field.row.name;
  }
}

// --- Classes -------------------------------------------------------------------------------------

namespace {

struct class_planner {
  store& from;
  change_plan& plan;
  change_result& result;
  class_reader reader{};
  class_writer writer{};
  dd_flist list{};
  class_def definition{};
};

}  // namespace

static bool look_up_class(class_planner& with, const std::string& key, planned_class& found) {
  auto note = [&](const class_row& row) {
    found.id = row.id;
    found.stored_name = row.name;
    if (!found.after) found.name = row.name;
    found.before = row.definition;
    return !load_class(with.reader, row, with.list, with.definition, with.result.failure) ||
           (found.old_tables = tables_of(with.definition), true);
  };
  return with.from.calls->classes(&with.from, with.plan.database.id, {choice::NAMED, key.c_str()},
                                  visit<class_row>(note), with.result.failure) &&
         !failed(with.result.failure);
}

// Brings the wanted definition into the form in which definitions are stored.
static void read_wanted(class_planner& with, const std::string& key, planned_class& one) {
  if (!one.after) return;
  problem fault;
  const class_row row{0, key.c_str(), one.name.c_str(), 0, one.after->c_str()};
  if (!load_class(with.reader, row, with.list, with.definition, fault) ||
      folded(text_of(with.definition, CLASS_NAME)) != key) {
    return refuse_state(with.result, change_of::CLASS, one.name);
  }
  if (needless_table(with.definition) != nullptr) with.definition.values[CLASS_TABLE] = nullptr;
  one.name = text_of(with.definition, CLASS_NAME);
  one.tables = tables_of(with.definition);
  one.after = with.writer.write(with.definition);
}

static bool finish_classes(class_planner& with) {
  int64_t next_id = planned_class::NEW;
  for (auto& [key, one] : with.plan.classes) {
    if (!look_up_class(with, key, one)) return false;
    if (!one.before) one.id = next_id--;
    read_wanted(with, key, one);
  }
  std::erase_if(with.plan.classes,
                [](const auto& each) { return each.second.before == each.second.after; });
  return true;
}

bool make_plan(store& store, std::span<const wanted_thing> wanted, change_plan& plan,
               change_result& result) {
  for (const wanted_thing& thing : wanted) {
    if (thing.what == change_of::FIELD) {
      plan.fields[folded(thing.name)] = {.name = thing.name, .after = thing.state};
    } else {
      plan.classes[folded(thing.name)] = {.name = thing.name, .after = thing.state};
    }
  }
  if (!look_up_fields(store, plan, result.failure)) return false;
  finish_fields(plan, result);
  class_planner with{store, plan, result};
  return finish_classes(with);
}

}  // namespace dm
