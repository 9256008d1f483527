// Writing a plan. What is deleted goes first, so that its names, numbers and tables are free: table
// names, classes, fields; then fields, classes, table names come.
#include <cstring>

#include "dm/changes/plan.h"
#include "dm/folded.h"
#include "dm/journal/write.h"

namespace dm {

namespace {

struct writing {
  store& to;
  const change_plan& plan;
  problem& why;
  int64_t database = plan.database.id;
  int64_t stamp = plan.database.counter + 1;
  journal_draft draft{};
};

}  // namespace

// A row keeps the name that it was made with: for another spelling it is made anew.
static bool is_made_anew(const planned_class& one) {
  return one.before && one.after && one.name != one.stored_name;
}

static bool is_made_anew(const planned_field& field) {
  const auto& [old, row] = std::pair(field.old, field.row);
  return field.before && field.after &&
         (old.number != row.number || old.type != row.type || old.flags != row.flags ||
          std::strcmp(old.name, row.name) != 0);
}

template <class Things>
static bool note_all(writing& with, change_of what, const Things& things) {
  for (const auto& [key, thing] : things) {
    const std::string_view before = thing.before ? std::string_view(*thing.before) : "";
    const std::string_view after = thing.after ? std::string_view(*thing.after) : "";
    const journal_states states{thing.before ? &before : nullptr, thing.after ? &after : nullptr};
    if (!note_change(with.to, with.draft, what, thing.name, states, with.why)) return false;
  }
  return true;
}

static key_set keys_of(const std::vector<std::string>& names) {
  key_set keys;
  for (const std::string& name : names) keys.insert(folded(name));
  return keys;
}

// The tables of `some` that the class has not among `others`, or all if its row is made anew.
template <class Call>
static bool each_table(const planned_class& one, const std::vector<std::string>& some,
                       const std::vector<std::string>& others, Call call) {
  const key_set kept = is_made_anew(one) ? key_set() : keys_of(others);
  for (const std::string& table : some) {
    if (kept.count(folded(table)) == 0 && !call(table)) return false;
  }
  return true;
}

static bool delete_tables(writing& with) {
  for (const auto& [key, one] : with.plan.classes) {
    const auto remove = [&](const std::string& table) {
      return with.to.calls->delete_table(&with.to, with.database, table.c_str(), with.why);
    };
    if (!each_table(one, one.old_tables, one.tables, remove)) return false;
  }
  return true;
}

static bool delete_classes(writing& with) {
  for (const auto& [key, one] : with.plan.classes) {
    if (!one.before || (one.after && !is_made_anew(one))) continue;
    const class_row row{one.id, key.c_str(), one.name.c_str(), 0, nullptr};
    if (!with.to.calls->delete_class(&with.to, with.database, row, with.why)) return false;
  }
  return true;
}

static bool delete_fields(writing& with) {
  for (const auto& [key, field] : with.plan.fields) {
    if (!field.before || (field.after && !is_made_anew(field))) continue;
    if (!with.to.calls->delete_field(&with.to, with.database, field.old.number, with.why)) {
      return false;
    }
  }
  return true;
}

static bool put_fields(writing& with) {
  std::vector<field_row> added;
  for (const auto& [key, field] : with.plan.fields) {
    if (!field.after) continue;
    field_row row = field.row;
    row.stamp = with.stamp;
    if (!field.before || is_made_anew(field)) {
      added.push_back(row);
    } else if (!with.to.calls->set_description(&with.to, with.database, row, with.why)) {
      return false;
    }
  }
  return added.empty() || with.to.calls->add_fields(&with.to, with.database, added, with.why);
}

static bool add_tables(writing& with, const planned_class& one, int64_t id) {
  return each_table(one, one.tables, one.old_tables, [&](const std::string& table) {
    const std::string key = folded(table);
    return with.to.calls->add_table(&with.to, with.database, {key.c_str(), table.c_str(), id},
                                    with.why);
  });
}

static bool put_classes(writing& with) {
  for (const auto& [key, one] : with.plan.classes) {
    if (!one.after) continue;
    const int64_t id = one.before && !is_made_anew(one) ? one.id : 0;
    class_row row{id, key.c_str(), one.name.c_str(), with.stamp, one.after->c_str()};
    if (!with.to.calls->put_class(&with.to, with.database, row, with.why) ||
        !add_tables(with, one, row.id)) {
      return false;
    }
  }
  return true;
}

bool write_plan(store& store, const settings& settings, const change_plan& plan,
                const std::string& detail, change_result& result) {
  writing with{store, plan, result.failure};
  const uint64_t login = settings.has_login ? settings.database : 0;
  const journal_subject subject{journal_kind::CHANGE, plan.database.number, detail, login};
  if (!note_all(with, change_of::FIELD, plan.fields) ||
      !note_all(with, change_of::CLASS, plan.classes) || !delete_tables(with) ||
      !delete_classes(with) || !delete_fields(with) || !put_fields(with) || !put_classes(with) ||
      !store.calls->set_counter(&store, with.database, with.stamp, with.why) ||
      !finish_record(store, with.draft, {}, subject, with.why)) {
    return false;
  }
  result.record = with.draft.record.number;
  result.changes = with.draft.record.changes;
  return true;
}

}  // namespace dm
