// Whether the dictionary would keep the rules.
#include <algorithm>
#include <cstring>

#include "dm/changes/planned_store.h"
#include "dm/class_outline.h"
#include "dm/folded.h"
#include "dm/rules/class_rules.h"
#include "dm/rules/field.h"

namespace dm {

namespace {

struct judging {
  store& from;
  const change_plan& plan;
  change_result& result;
  planned_store planned;
};

}  // namespace

// --- Fields --------------------------------------------------------------------------------------

static void blame(judging& in, const planned_field& field, int32_t code, uint32_t which,
                  std::string_view fault, const std::string& user = "") {
  problem why;
  blame_field(field.name.c_str(), code, which, fault, why);
  refuse(in.result, change_of::FIELD, field.name, std::move(why), user);
}

static bool is_predefined(const planned_field& field) {
  return field.before && (field.old.flags & DD_FIELD_PREDEFINED) != 0;
}

// Whether nothing but the description differs.
static bool is_described_anew(const planned_field& field) {
  return field.row.number == field.old.number && field.row.type == field.old.type &&
         field.row.flags == field.old.flags && std::strcmp(field.row.name, field.old.name) == 0;
}

static void judge_flags(judging& in, const planned_field& field) {
  if (is_predefined(field) && !is_described_anew(field)) {
    blame(in, field, TAV_ERR_IN_USE, TAV_FLD_FIELD_NAME,
          "is predefined: nothing but its description can be changed");
  } else if (!is_predefined(field) && field.row.flags != 0) {
    blame(in, field, TAV_ERR_BAD_VALUE, TAV_FLD_FIELD_FLAGS,
          "has flags, which only predefined fields have");
  }
}

static void judge_text(judging& in, const planned_field& field) {
  problem why;
  const field_def definition{field.row.name, field.row.descr, field.row.number, field.row.type};
  if (!is_well_formed(definition, why)) {
    refuse(in.result, change_of::FIELD, field.name, std::move(why));
  }
}

// Numbers that fields get, each with the key of a field that has it: the first that the plan gives
// it to, or one that is stored and stays as it is.
using number_holders = std::map<int32_t, std::string>;

static bool gets_number(const planned_field& field) {
  return field.after && !(field.before && field.old.number == field.row.number);
}

// For more fields, or classes, than this all are read at once (with a local file; sooner on a
// server).
static constexpr size_t MANY = 200;

static bool find_holders(judging& in, number_holders& holders) {
  const auto& fields = in.plan.fields;
  for (const auto& [key, field] : fields) {
    if (field.after) holders.try_emplace(field.row.number, key);
  }
  auto note = [&](const field_row& row) {
    const auto found = holders.find(row.number);
    if (found == holders.end()) return true;
    const std::string key = folded(row.name);
    if (fields.count(key) == 0) found->second = key;
    return true;
  };
  const auto read = [&](const choice& wanted) {
    return in.from.calls->fields(&in.from, in.plan.database.id, wanted, visit<field_row>(note),
                                 in.result.failure);
  };
  if (fields.size() * in.from.look_up_cost > MANY) return read({});
  return std::ranges::all_of(fields, [&](const auto& each) {
    return !gets_number(each.second) || read({choice::NUMBERED, nullptr, each.second.row.number});
  });
}

static bool judge_fields(judging& in) {
  number_holders holders;
  if (!find_holders(in, holders)) return false;
  for (const auto& [key, field] : in.plan.fields) {
    if (!field.after && is_predefined(field)) {
      blame(in, field, TAV_ERR_IN_USE, TAV_FLD_FIELD_NAME, "is predefined and cannot be deleted");
    }
    if (!field.after) continue;
    judge_text(in, field);
    judge_flags(in, field);
    if (holders[field.row.number] == key) continue;
    blame(in, field, TAV_ERR_CONFLICT, TAV_FLD_FIELD_NUM,
          join({"cannot have the number ", std::to_string(field.row.number),
                ": another field has it"}),
          holders[field.row.number]);
  }
  return true;
}

// --- Classes that stay and use what does not -----------------------------------------------------

// By folded name: the type that the field will have, 0 where it goes.
using lost_fields = key_map<int32_t>;

static lost_fields find_lost(const change_plan& plan) {
  lost_fields lost;
  for (const auto& [key, field] : plan.fields) {
    if (!field.before || (field.after && field.row.type == field.old.type)) continue;
    if (is_predefined(field)) continue;  // refused as such, which says it all
    lost[key] = field.after ? field.row.type : 0;
  }
  return lost;
}

static void blame_use(judging& in, const std::string& field, int32_t type, const char* class_name) {
  const std::string& name = in.plan.fields.at(field).name;
  const std::string fault =
      type == 0 ? "cannot be deleted: class " : "cannot get another type: class ";
  refuse(in.result, change_of::FIELD, name,
         {TAV_ERR_IN_USE, TAV_FLD_FIELD_NAME, 0, 0,
          join({"Field ", quoted(name), " ", fault, quoted(class_name), " uses it."})},
         class_name);
}

static void judge_uses(judging& in, const lost_fields& lost, const class_row& row,
                       const class_outline& outline) {
  key_set told;
  for (const outline_entry& entry : outline.entries) {
    const std::string key = folded(entry.name);
    const auto found = lost.find(key);
    const bool is_use = found != lost.end() && found->second != entry.type;
    if (is_use && told.insert(key).second) blame_use(in, key, found->second, row.name);
  }
}

static bool judge_users(judging& in) {
  const lost_fields lost = find_lost(in.plan);
  outline_reader reader;
  auto look = [&](const class_row& row) {
    if (in.plan.classes.count(row.key) != 0) return true;  // judged as a whole
    const class_outline* outline = reader.read(row, in.result.failure);
    if (outline != nullptr) judge_uses(in, lost, row, *outline);
    return outline != nullptr;
  };
  const auto read = [&](const choice& wanted) {
    return in.from.calls->classes(&in.from, in.plan.database.id, wanted, visit<class_row>(look),
                                  in.result.failure) &&
           !failed(in.result.failure);
  };
  if (lost.empty()) return true;
  if (lost.size() != 1) return read({});
  return read({choice::MENTIONING, lost.begin()->first.c_str()});
}

// --- Classes -------------------------------------------------------------------------------------

// A class that goes must have nothing below it that stays.
static bool judge_gone(judging& in, const std::string& key, const planned_class& gone) {
  auto note = [&](const class_row& row) {
    refuse(in.result, change_of::CLASS, gone.name,
           {TAV_ERR_IN_USE, TAV_FLD_NAME, 0, 0,
            join({"Class ", quoted(gone.name), " cannot be deleted: class ", quoted(row.name),
                  " is below it."})},
           row.name);
    return true;
  };
  return in.planned.calls->classes(&in.planned, in.plan.database.id,
                                   {choice::KEYS_BELOW, key.c_str()}, visit<class_row>(note),
                                   in.result.failure);
}

namespace {

struct class_judge {
  class_world world;
  class_reader reader{};
  dd_flist list{};
  class_def definition{};
  std::vector<std::string> tables{};
  findings found{};
};

}  // namespace

// The other class that would have the table; "" where the store knows none.
static std::string owner_of(judging& in, const std::string& table, int64_t own) {
  int64_t owner = own;
  std::string name;
  auto note_owner = [&](const table_row& row) {
    if (row.class_id != own) owner = row.class_id;
    return true;
  };
  auto note_name = [&](const class_row& row) {
    if (row.id == owner && owner != own) name = row.name;
    return name.empty();
  };
  const int64_t id = in.plan.database.id;
  problem& why = in.result.failure;
  return in.planned.calls->tables(&in.planned, id, {choice::NAMED, table.c_str()},
                                  visit<table_row>(note_owner), why) &&
                 in.planned.calls->classes(&in.planned, id, {choice::KEYS},
                                           visit<class_row>(note_name), why)
             ? name
             : "";
}

// The rules know that another class has a table, but not which.
static void name_owner(judging& in, const planned_class& one, violation& why) {
  if (why.shared.empty() || !why.against.empty()) return;
  why.against = owner_of(in, why.shared, one.id);
  if (why.against.empty()) return;
  why.sentence = join({told_thing(change_of::CLASS, one.name), " has the table ",
                       quoted(why.shared), ", which class ", quoted(why.against), " has."});
}

static bool judge_class(judging& in, class_judge& with, const std::string& key,
                        const planned_class& one) {
  const class_row row{one.id, key.c_str(), one.name.c_str(), 0, one.after->c_str()};
  problem fault;
  if (!load_class(with.reader, row, with.list, with.definition, fault)) return true;  // refused
  with.found.clear();
  check_class(with.definition, with.world, with.tables, with.found);
  for (violation& why : with.found) {
    name_owner(in, one, why);
    const bool is_missed = why.shared.empty() && !why.against.empty();
    in.result.refused.push_back(
        {why, change_of::CLASS, one.name, {}, why.against, why.shared, is_missed});
  }
  if (failed(with.world.why)) in.result.failure = with.world.why;
  return !failed(in.result.failure);
}

static bool judge_classes(judging& in) {
  class_judge with{class_world(in.planned, in.plan.database.id)};
  if (in.plan.classes.size() * in.from.look_up_cost > MANY && !with.world.read_all()) {
    return in.result.failure = with.world.why, false;
  }
  for (const auto& [key, one] : in.plan.classes) {
    if (!(one.after ? judge_class(in, with, key, one) : judge_gone(in, key, one))) return false;
  }
  return true;
}

bool judge(store& store, const change_plan& plan, change_result& result) {
  judging in{store, plan, result, planned_store(store, plan)};
  return judge_fields(in) && judge_users(in) && judge_classes(in);
}

}  // namespace dm
