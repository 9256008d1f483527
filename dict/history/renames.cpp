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

// The name on the other side of the rename that the detail tells of, whose members those are; empty
// where it is not about that name. With a class those below it were renamed.
static std::string renamed(const std::string& detail, dm::change_of what, const std::string& name,
                           const char* from, const char* to) {
  document read;
  read.Parse(detail.c_str());
  if (read.HasParseError() || !read.IsObject()) return "";
  const bool is_class = what == dm::change_of::CLASS;
  if (text_in(read, "rename") != (is_class ? "class" : "field")) return "";
  const std::string key = dm::folded(name);
  const std::string old = dm::folded(text_in(read, from));
  if (key == old) return text_in(read, to);
  return is_class && key.rfind(old + "/", 0) == 0 ? text_in(read, to) + name.substr(old.size())
                                                  : "";
}

static std::string name_before(const std::string& detail, dm::change_of what,
                               const std::string& key) {
  return dm::folded(renamed(detail, what, key, "to", "from"));
}

std::string name_after(const dm::journal_record& record, dm::change_of what,
                       const std::string& name) {
  return record.kind == dm::journal_kind::CHANGE ? renamed(record.detail, what, name, "from", "to")
                                                 : "";
}

bool find_names(dm::store& store, dm::change_of what, const std::string& name,
                std::vector<past_name>& names, dm::problem& why) {
  names = {{dm::folded(name), 0, std::numeric_limits<int64_t>::max()}};
  const auto look = [&](const dm::journal_record& record) {
    if (record.kind != dm::journal_kind::CHANGE) return true;
    const std::string before = name_before(record.detail, what, names.back().key);
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
