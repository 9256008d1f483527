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

told_rename read_rename(const dm::journal_record& record) {
  document read;
  if (record.kind != dm::journal_kind::CHANGE) return {};
  read.Parse(record.detail.c_str());
  if (read.HasParseError() || !read.IsObject()) return {};
  return {text_in(read, "rename"), dm::folded(text_in(read, "from")),
          dm::folded(text_in(read, "to"))};
}

// The name before the record; empty where that is no rename of the name. With a class those below
// it were renamed.
static std::string name_before(const dm::journal_record& record, dm::change_of what,
                               const std::string& key) {
  const bool is_class = what == dm::change_of::CLASS;
  const told_rename told = read_rename(record);
  if (told.what != (is_class ? "class" : "field")) return "";
  if (key == told.to) return told.from;
  const bool is_below = is_class && key.rfind(told.to + "/", 0) == 0;
  return is_below ? told.from + key.substr(told.to.size()) : "";
}

bool find_names(dm::store& store, dm::change_of what, const std::string& name,
                std::vector<past_name>& names, dm::problem& why) {
  names = {{dm::folded(name), 0, std::numeric_limits<int64_t>::max()}};
  const auto look = [&](const dm::journal_record& record) {
    const std::string before = name_before(record, what, names.back().key);
    if (before.empty() || before == names.back().key) return true;
    names.back().from = record.number;
    names.push_back({before, 0, record.number});
    return true;
  };
  dm::journal_range range;
  range.newest_first = true;
  return dm::walk_records(store, range, look, why);
}

bool is_of(const std::vector<past_name>& names, int64_t record, std::string_view changed) {
  return std::ranges::any_of(names, [&](const past_name& name) {
    return name.key.size() == changed.size() && name.from <= record && record <= name.to &&
           name.key == dm::folded(changed);
  });
}

}  // namespace dict
