#include <algorithm>
#include <map>
#include <set>

#include "dd/fold.h"
#include "dd/utf8.h"
#include "dict/list/list.h"
#include "dm/class_outline.h"
#include "dm/folded.h"

namespace dict {

// How many bytes the first character has; a byte that is no UTF-8 counts as one.
static size_t character(std::string_view text) {
  return std::max<size_t>(dd_utf8_length(text.data(), text.size()), 1);
}

// Goes back to the last "*" only: what stands before it has found its earliest place.
bool fits(std::string_view pattern, std::string_view name) {
  if (pattern.empty()) return true;
  std::string_view after_star, retried;
  bool has_star = false;
  while (!name.empty() || !pattern.empty()) {
    if (!pattern.empty() && pattern[0] == '*') {
      pattern.remove_prefix(1);
      after_star = pattern, retried = name, has_star = true;
    } else if (!pattern.empty() && !name.empty() && pattern[0] == '?') {
      pattern.remove_prefix(1), name.remove_prefix(character(name));
    } else if (!pattern.empty() && !name.empty() && dd_fold(pattern[0]) == dd_fold(name[0])) {
      pattern.remove_prefix(1), name.remove_prefix(1);
    } else if (has_star && !retried.empty()) {
      retried.remove_prefix(character(retried));
      pattern = after_star, name = retried;
    } else {
      return false;
    }
  }
  return true;
}

static bool list_fields(const list_source& source, const std::string& pattern, listing& found,
                        dm::problem& why) {
  auto add = [&](const dm::field_row& row) {
    if (!fits(pattern, row.name)) return true;
    const char* keyword = dd_type_keyword(row.type);
    found.fields.push_back({row.name, keyword != nullptr ? keyword : std::to_string(row.type),
                            row.number, (row.flags & DD_FIELD_PREDEFINED) != 0,
                            row.descr != nullptr ? row.descr : ""});
    return true;
  };
  dm::store* store = source.from.store.get();
  const int64_t id = source.from.database.id;
  const auto visitor = dm::visit<dm::field_row>(add);
  return source.at != nullptr ? dm::past_fields(*store, id, *source.at, visitor, why)
                              : store->calls->fields(store, id, {}, visitor, why);
}

// A class that is read; its key without the last step is that of the class above.
struct named_class {
  std::string key, name;
  int64_t id;
};

static bool read_classes(const list_source& source, std::vector<named_class>& classes,
                         dm::problem& why) {
  auto add = [&](const dm::class_row& row) {
    return classes.push_back({row.key, row.name, row.id}), true;
  };
  dm::store* store = source.from.store.get();
  const int64_t id = source.from.database.id;
  const auto visitor = dm::visit<dm::class_row>(add);
  const dm::choice keys{dm::choice::KEYS};
  return source.at != nullptr ? dm::past_classes(*store, id, *source.at, visitor, why)
                              : store->calls->classes(store, id, keys, visitor, why);
}

// Steps compare as a whole: what stands below "/a" comes before "/a-b".
static std::string with_steps_first(std::string key) {
  std::replace(key.begin(), key.end(), '/', '\1');
  return key;
}

// With the classes above those that fit; each right behind the one that it stands below.
static void make_tree(const std::vector<named_class>& classes, const std::string& pattern,
                      listing& found) {
  std::set<std::string> shown;
  for (const named_class& one : classes) {
    if (!fits(pattern, one.name)) continue;
    for (size_t end = one.key.size(); end != one.key.npos && end > 0;) {
      shown.insert(one.key.substr(0, end));
      end = one.key.rfind('/', end - 1);
    }
  }
  std::map<std::string, const named_class*> sorted;
  for (const named_class& one : classes) {
    if (shown.count(one.key) != 0) sorted[with_steps_first(one.key)] = &one;
  }
  std::vector<std::string> open;  // keys with a "/" behind
  for (const auto& [order, one] : sorted) {
    while (!open.empty() && one->key.rfind(open.back(), 0) != 0) open.pop_back();
    found.classes.push_back({one->name, open.size(), open.empty() ? 0 : open.back().size() - 1});
    open.push_back(one->key + "/");
  }
}

static bool list_tables(reading& from, const std::string& pattern,
                        const std::vector<named_class>& classes, listing& found, dm::problem& why) {
  std::map<int64_t, const std::string*> names;
  for (const named_class& one : classes) names[one.id] = &one.name;
  auto add = [&](const dm::table_row& row) {
    if (!fits(pattern, row.name)) return true;
    const auto owner = names.find(row.class_id);
    found.tables.push_back({row.name, owner != names.end() ? *owner->second : ""});
    return true;
  };
  return from.store->calls->tables(from.store.get(), from.database.id, {},
                                   dm::visit<dm::table_row>(add), why);
}

// The journal keeps definitions; the names of their tables are found in these.
static bool list_past_tables(const list_source& source, const std::string& pattern, listing& found,
                             dm::problem& why) {
  dm::outline_reader reader;
  const auto add = [&](std::string_view table, const char* class_name) {
    if (!table.empty() && fits(pattern, table)) {
      found.tables.push_back({std::string(table), class_name});
    }
  };
  auto look = [&](const dm::class_row& row) {
    const dm::class_outline* outline = reader.read(row, why);
    if (outline == nullptr) return false;
    add(outline->table, row.name);
    for (const dm::outline_entry& entry : outline->entries) add(dm::table_of(entry), row.name);
    return true;
  };
  reading& from = source.from;
  if (!dm::past_classes(*from.store, from.database.id, *source.at, dm::visit<dm::class_row>(look),
                        why) ||
      dm::failed(why)) {
    return false;
  }
  std::sort(found.tables.begin(), found.tables.end(),
            [](const listed_table& a, const listed_table& b) {
              return dd_compare(a.name.c_str(), b.name.c_str()) < 0;
            });
  return true;
}

bool find_listed(const list_source& source, const std::string& pattern, bool is_tree,
                 listing& found, dm::problem& why) {
  if (found.has_fields && !list_fields(source, pattern, found, why)) return false;
  std::vector<named_class> classes;
  if ((found.has_classes || found.has_tables) && !read_classes(source, classes, why)) return false;
  if (found.has_classes && is_tree) make_tree(classes, pattern, found);
  for (const named_class& one : classes) {
    if (found.has_classes && !is_tree && fits(pattern, one.name)) {
      found.classes.push_back({one.name});
    }
  }
  if (!found.has_tables) return true;
  return source.at != nullptr ? list_past_tables(source, pattern, found, why)
                              : list_tables(source.from, pattern, classes, found, why);
}

}  // namespace dict
