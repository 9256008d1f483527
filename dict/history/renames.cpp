#include "dict/history/renames.h"

#include <algorithm>

#include "dict/parsed_json.h"
#include "dict/terminal/json.h"
#include "dm/folded.h"

namespace dict {

static std::string text_in(const json_value& read, const char* key) {
  const json_value* found = find_member(read, key);
  return found != nullptr && found->IsString() ? found->GetString() : "";
}

static void add_rename(const json_value& read, std::vector<told_rename>& renames) {
  told_rename told{text_in(read, "rename"), text_in(read, "from"), text_in(read, "to")};
  if (!told.what.empty()) renames.push_back(std::move(told));
}

std::vector<told_rename> read_renames(const dm::journal_record& record) {
  std::vector<told_rename> renames;
  if (record.kind != dm::journal_kind::CHANGE) return {};
  const parsed_json read = parse_json(record.detail);
  add_rename(read, renames);
  const json_value* several = find_member(read, "renames");
  if (several == nullptr || !several->IsArray()) return renames;
  for (const json_value& each : several->GetArray()) add_rename(each, renames);
  return renames;
}

static std::string members_of(const told_rename& one) {
  const std::string object =
      json_object({{"rename", one.what}, {"from", one.from}, {"to", one.to}});
  return object.substr(1, object.size() - 2);
}

std::string renames_detail(const std::vector<told_rename>& renames) {
  std::string list;
  if (renames.empty()) return "";
  if (renames.size() == 1) return std::string(",").append(members_of(renames.front()));
  for (const told_rename& one : renames) {
    list.append(list.empty() ? "{" : ",{").append(members_of(one)).append("}");
  }
  return list.insert(0, ",\"renames\":[").append("]");
}

std::vector<told_rename> taken_back(const std::vector<told_rename>& renames) {
  std::vector<told_rename> back;
  for (auto one = renames.rbegin(); one != renames.rend(); ++one) {
    back.push_back({one->what, one->to, one->from});
  }
  return back;
}

// What is called `name` when `from` becomes `to`. With a class those below it are renamed.
static std::string renamed(const told_rename& told, dm::change_of what, const std::string& name) {
  const bool is_class = what == dm::change_of::CLASS;
  if (told.what != (is_class ? "class" : "field")) return name;
  const std::string key = dm::folded(name);
  const std::string from = dm::folded(told.from);
  if (key == from) return told.to;
  return is_class && key.rfind(from + "/", 0) == 0 ? told.to + name.substr(from.size()) : name;
}

std::string name_through(const std::vector<told_rename>& renames, dm::change_of what,
                         std::string name) {
  for (const told_rename& told : renames) name = renamed(told, what, name);
  return name;
}

std::string name_after(const dm::journal_record& record, dm::change_of what,
                       const std::string& name) {
  std::string after = name_through(read_renames(record), what, name);
  return after == name ? "" : after;
}

std::vector<past_name> past_names::in(const std::string& database) const {
  const auto found = renamed.find(database);
  if (found != renamed.end()) return found->second;
  return {{key, 0, std::numeric_limits<int64_t>::max()}};
}

// Adds the name that the thing had before the record; `back` takes its renames back.
static void go_back(const dm::journal_record& record, const std::vector<told_rename>& back,
                    named_thing& thing) {
  std::vector<past_name> known = thing.names.in(record.database);
  const std::string key = known.back().key;
  const std::string before = dm::folded(name_through(back, thing.what, key));
  if (before == key) return;
  known.back().from = record.number;
  known.push_back({before, 0, record.number});
  thing.names.renamed[record.database] = std::move(known);
}

bool find_names(dm::store& store, std::vector<named_thing>& things, dm::problem& why) {
  for (named_thing& thing : things) thing.names = {dm::folded(thing.name), {}};
  const auto look = [&](const dm::journal_record& record) {
    const auto back = taken_back(read_renames(record));
    if (back.empty()) return true;
    for (named_thing& thing : things) go_back(record, back, thing);
    return true;
  };
  dm::journal_range range;
  range.newest_first = true;
  return dm::walk_records(store, range, look, why);
}

bool find_names(dm::store& store, dm::change_of what, const std::string& name, past_names& names,
                dm::problem& why) {
  std::vector<named_thing> one{{what, name}};
  const bool is_found = find_names(store, one, why);
  names = std::move(one.front().names);
  return is_found;
}

bool is_of(const past_names& names, const std::string& database, int64_t record,
           std::string_view changed) {
  const auto has_it = [&](const past_name& name) {
    return name.key.size() == changed.size() && name.from <= record && record <= name.to &&
           name.key == dm::folded(changed);
  };
  const auto found = names.renamed.find(database);
  if (found != names.renamed.end()) return std::ranges::any_of(found->second, has_it);
  return has_it({names.key, 0, std::numeric_limits<int64_t>::max()});
}

}  // namespace dict
