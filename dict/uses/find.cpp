// Of all definitions only those are read whose text mentions the name.
#include <algorithm>
#include <charconv>

#include "dd/fold.h"
#include "dd/index.h"
#include "dict/uses/uses.h"
#include "dm/class_def.h"
#include "dm/class_outline.h"
#include "dm/folded.h"
#include "dm/rules/class_rules.h"

namespace dict {

// Gives each class whose definition may mention the name to `look`, with its outline.
template <class Look>
static bool look_into(reading& from, const char* name, Look look, dm::problem& why) {
  dm::outline_reader reader;
  auto read = [&](const dm::class_row& row) {
    const dm::class_outline* outline = reader.read(row, why);
    if (outline != nullptr) look(row, *outline);
    return outline != nullptr;
  };
  const dm::choice wanted{dm::choice::MENTIONING, name};
  return from.store->calls->classes(from.store.get(), from.database.id, wanted,
                                    dm::visit<dm::class_row>(read), why) &&
         !dm::failed(why);
}

// Of the entry at that position; none of -1.
static std::vector<std::string> path_of(const dm::class_outline& outline, int32_t position) {
  std::vector<std::string> path;
  for (; position != dm::NO_PARENT;
       position = outline.entries[static_cast<size_t>(position)].parent) {
    path.insert(path.begin(), outline.entries[static_cast<size_t>(position)].name);
  }
  return path;
}

template <class Found, class ClassOf>
static void sort_by_class(std::vector<Found>& found, ClassOf class_of) {
  std::stable_sort(found.begin(), found.end(), [&](const Found& a, const Found& b) {
    return dd_compare(class_of(a).class_name.c_str(), class_of(b).class_name.c_str()) < 0;
  });
}

// --- Tables --------------------------------------------------------------------------------------

// The columns that the table of the class (-1) or of an entry has.
static std::vector<found_table::column> columns_of(const dm::class_outline& outline,
                                                   int32_t owner) {
  std::vector<found_table::column> columns;
  for (size_t i = 0; i < outline.entries.size(); ++i) {
    const dm::outline_entry& entry = outline.entries[i];
    const auto position = static_cast<int32_t>(i);
    std::string column;
    if (entry.type == TAV_FLDT_BUF) {
      if (position == owner) column = dm::storage_of_buf(entry.sql_name).column;
    } else if (!dd_is_container(entry.type) && entry.parent == owner) {
      column = entry.sql_name;
    }
    if (!column.empty()) columns.push_back({column, path_of(outline, position)});
  }
  return columns;
}

static void add_tables(const dm::class_row& row, const dm::class_outline& outline,
                       const std::string& name, uses& found) {
  const auto add = [&](const std::string& table, int32_t owner) {
    if (!dd_equal(table.c_str(), name.c_str())) return;
    found.tables.push_back(
        {table, {row.name, path_of(outline, owner)}, columns_of(outline, owner)});
  };
  add(outline.table, dm::NO_PARENT);
  for (size_t i = 0; i < outline.entries.size(); ++i) {
    add(std::string(dm::table_of(outline.entries[i])), static_cast<int32_t>(i));
  }
}

// --- Fields --------------------------------------------------------------------------------------

static found_field field_of(const dm::field_row& row) {
  const char* keyword = dd_type_keyword(row.type);
  return {row.name, keyword != nullptr ? keyword : std::to_string(row.type), row.number,
          (row.flags & DD_FIELD_PREDEFINED) != 0};
}

static bool add_fields(reading& from, const dm::choice& wanted, uses& found, dm::problem& why) {
  auto add = [&](const dm::field_row& row) {
    const auto is_it = [&](const found_field& field) { return field.number == row.number; };
    if (std::none_of(found.fields.begin(), found.fields.end(), is_it)) {
      found.fields.push_back(field_of(row));
    }
    return true;
  };
  return from.store->calls->fields(from.store.get(), from.database.id, wanted,
                                   dm::visit<dm::field_row>(add), why);
}

static bool add_fields(reading& from, const std::string& asked, uses& found, dm::problem& why) {
  if (!add_fields(from, {dm::choice::NAMED, asked.c_str()}, found, why)) return false;
  dm::choice numbered{dm::choice::NUMBERED};
  const char* end = asked.data() + asked.size();
  const auto [rest, error] = std::from_chars(asked.data(), end, numbered.number);
  return error != std::errc() || rest != end || add_fields(from, numbered, found, why);
}

static void add_users(const dm::class_row& row, const dm::class_outline& outline,
                      found_field& field) {
  for (size_t i = 0; i < outline.entries.size(); ++i) {
    if (!dd_equal(outline.entries[i].name, field.name.c_str())) continue;
    field.users.push_back({row.name, path_of(outline, static_cast<int32_t>(i))});
  }
}

// --- Classes -------------------------------------------------------------------------------------

static bool add_class(reading& from, const std::string& asked, uses& found, dm::problem& why) {
  dm::store* store = from.store.get();
  dm::outline_reader reader;
  auto add = [&](const dm::class_row& row) {
    const dm::class_outline* outline = reader.read(row, why);
    if (outline == nullptr) return false;
    found_class& one = found.classes.emplace_back();
    one.name = row.name;
    if (*outline->table != '\0') one.tables.push_back({outline->table, {}});
    for (size_t i = 0; i < outline->entries.size(); ++i) {
      const std::string table(dm::table_of(outline->entries[i]));
      if (!table.empty()) one.tables.push_back({table, path_of(*outline, static_cast<int32_t>(i))});
    }
    return true;
  };
  auto add_below = [&](const dm::class_row& row) {
    return found.classes.back().subclasses.push_back(row.name), true;
  };
  const dm::choice named{dm::choice::NAMED, asked.c_str()};
  const dm::choice below{dm::choice::KEYS_BELOW, asked.c_str()};
  if (!store->calls->classes(store, from.database.id, named, dm::visit<dm::class_row>(add), why) ||
      dm::failed(why)) {
    return false;
  }
  return found.classes.empty() || store->calls->classes(store, from.database.id, below,
                                                        dm::visit<dm::class_row>(add_below), why);
}

// --- All -----------------------------------------------------------------------------------------

// A field that is not defined, and that classes use nevertheless.
static void add_undefined(found_field used, uses& found) {
  if (!used.users.empty()) found.fields.push_back(std::move(used));
}

bool find_uses(reading& from, const std::string& asked, uses& found, dm::problem& why) {
  if (asked.empty()) return true;
  if (!add_fields(from, asked, found, why) || !add_class(from, asked, found, why)) return false;
  const auto is_named = [&](const found_field& field) {
    return dd_equal(field.name.c_str(), asked.c_str());
  };
  const bool is_defined = std::any_of(found.fields.begin(), found.fields.end(), is_named);
  found_field undefined{asked, "", 0, false};
  const auto look = [&](const dm::class_row& row, const dm::class_outline& outline) {
    add_users(row, outline, is_defined ? found.fields.front() : undefined);
    add_tables(row, outline, asked, found);
  };
  if (!look_into(from, asked.c_str(), look, why)) return false;
  for (found_field& field : found.fields) {
    const auto look_for_field = [&](const dm::class_row& row, const dm::class_outline& outline) {
      add_users(row, outline, field);
    };
    if (!is_named(field) && !look_into(from, field.name.c_str(), look_for_field, why)) return false;
  }
  add_undefined(std::move(undefined), found);
  for (found_field& field : found.fields) {
    sort_by_class(field.users, [](const place& user) -> const place& { return user; });
  }
  sort_by_class(found.tables, [](const found_table& t) -> const place& { return t.owner; });
  return true;
}

bool find_unused(reading& from, std::vector<found_field>& found, dm::problem& why) {
  std::vector<found_field> fields;
  auto keep = [&](const dm::field_row& row) {
    if ((row.flags & DD_FIELD_PREDEFINED) == 0) fields.push_back(field_of(row));
    return true;
  };
  if (!from.store->calls->fields(from.store.get(), from.database.id, {},
                                 dm::visit<dm::field_row>(keep), why)) {
    return false;
  }
  dd_index<dd_by_name, size_t> places;
  places.reserve(fields.size());
  for (size_t i = 0; i < fields.size(); ++i) places.add(fields[i].name.c_str(), i);
  std::vector<bool> is_used(fields.size());
  const auto look = [&](const dm::class_row&, const dm::class_outline& outline) {
    for (const dm::outline_entry& entry : outline.entries) {
      const size_t* at = places.find(entry.name);
      if (at != nullptr) is_used[*at] = true;
    }
  };
  if (!look_into(from, "", look, why)) return false;
  for (size_t i = 0; i < fields.size(); ++i) {
    if (!is_used[i]) found.push_back(std::move(fields[i]));
  }
  return true;
}

}  // namespace dict
