#include "dict/history/renames.h"

#include <rapidjson/document.h>

#include <algorithm>

#include "dm/folded.h"
#include "dm/json_memory.h"

namespace dict {

using document =
    rapidjson::GenericDocument<rapidjson::UTF8<>, rapidjson::MemoryPoolAllocator<dm::json_memory>,
                               dm::json_memory>;

static std::string text_in(const document& read, const char* key) {
  return read.HasMember(key) && read[key].IsString() ? read[key].GetString() : "";
}

// With the names as they are written.
static told_rename read_names(const dm::journal_record& record) {
  document read;
  if (record.kind != dm::journal_kind::CHANGE) return {};
  read.Parse(record.detail.c_str());
  if (read.HasParseError() || !read.IsObject()) return {};
  return {text_in(read, "rename"), text_in(read, "from"), text_in(read, "to")};
}

told_rename read_rename(const dm::journal_record& record) {
  const told_rename told = read_names(record);
  return {told.what, dm::folded(told.from), dm::folded(told.to)};
}

// What is called `name` when `from` becomes `to`; empty where that is not about it. With a class
// those below it are renamed. `from` is folded.
static std::string renamed(const told_rename& told, dm::change_of what, const std::string& name,
                           const std::string& from, const std::string& to) {
  const bool is_class = what == dm::change_of::CLASS;
  if (told.what != (is_class ? "class" : "field")) return "";
  const std::string key = dm::folded(name);
  if (key == from) return to;
  return is_class && key.rfind(from + "/", 0) == 0 ? to + name.substr(from.size()) : "";
}

// Adds the name that the thing had before the rename.
static void go_back(const told_rename& told, int64_t record, named_thing& thing) {
  past_name& after = thing.names.back();
  const std::string before = renamed(told, thing.what, after.key, told.to, told.from);
  if (before.empty() || before == after.key) return;
  after.from = record;
  thing.names.push_back({before, 0, record});
}

std::string name_after(const dm::journal_record& record, dm::change_of what,
                       const std::string& name) {
  const told_rename told = read_names(record);
  return renamed(told, what, name, dm::folded(told.from), told.to);
}

bool find_names(dm::store& store, std::vector<named_thing>& things, dm::problem& why) {
  for (named_thing& thing : things) {
    thing.names = {{dm::folded(thing.name), 0, std::numeric_limits<int64_t>::max()}};
  }
  const auto look = [&](const dm::journal_record& record) {
    const told_rename told = read_rename(record);
    if (told.what.empty()) return true;
    for (named_thing& thing : things) go_back(told, record.number, thing);
    return true;
  };
  dm::journal_range range;
  range.newest_first = true;
  return dm::walk_records(store, range, look, why);
}

bool find_names(dm::store& store, dm::change_of what, const std::string& name,
                std::vector<past_name>& names, dm::problem& why) {
  std::vector<named_thing> one{{what, name}};
  const bool is_found = find_names(store, one, why);
  names = std::move(one.front().names);
  return is_found;
}

bool is_of(const std::vector<past_name>& names, int64_t record, std::string_view changed) {
  return std::ranges::any_of(names, [&](const past_name& name) {
    return name.key.size() == changed.size() && name.from <= record && record <= name.to &&
           name.key == dm::folded(changed);
  });
}

}  // namespace dict
