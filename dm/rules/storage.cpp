// Rule: each base class and each entry names its table or column, and no two share one.
#include <algorithm>

#include "dd/class_names.h"
#include "dm/folded.h"
#include "dm/rules/class_rules.h"

namespace dm {

dd_buf_storage storage_of_buf(std::string_view text) {
  const dd_buf_storage storage = dd_split_buf(text);
  return storage.table.empty() ? dd_buf_storage{} : storage;
}

static void blame_missing(const class_def& definition, const entry_def& entry,
                          std::string_view fault, findings& result) {
  blame(definition, entry, TAV_ERR_MISSING_FIELD, TAV_FLD_SQL_TABLE, fault, result);
}

static void collect_tables(const class_def& definition, std::vector<std::string>& tables,
                           findings& result) {
  const char* table = text_of(definition, CLASS_TABLE);
  if (*table != '\0') tables.emplace_back(table);
  if (*table == '\0' && !dd_is_subclass(text_of(definition, CLASS_NAME))) {
    blame(definition, TAV_ERR_MISSING_FIELD, TAV_FLD_SQL_TABLE, "has no table", result);
  }
  for (const entry_def& entry : definition.entries) {
    const char* name = text_of(entry, ENTRY_SQL_NAME);
    if (entry.type == TAV_FLDT_BUF) {
      const dd_buf_storage storage = storage_of_buf(name);
      if (!storage.table.empty()) tables.emplace_back(storage.table);
      if (storage.table.empty()) blame_missing(definition, entry, "has no table", result);
      if (storage.column.empty()) blame_missing(definition, entry, "has no column", result);
    } else if (dd_is_container(entry.type)) {
      if (*name != '\0') tables.emplace_back(name);
      if (*name == '\0') blame_missing(definition, entry, "has no table", result);
    } else if (*name == '\0') {
      blame_missing(definition, entry, "has no column", result);
    }
  }
}

static void check_tables(const class_def& definition, class_world& world,
                         const std::vector<std::string>& tables, findings& result) {
  std::vector<std::string> seen;
  for (const std::string& table : tables) {
    seen.push_back(folded(table));
    if (!world.is_other_table(table.c_str(), text_of(definition, CLASS_NAME))) continue;
    blame(definition, TAV_ERR_CONFLICT, TAV_FLD_SQL_TABLE,
          join({"has the table ", quoted(table), ", which another class has"}), result);
    result.back().shared = table;
  }
  std::sort(seen.begin(), seen.end());
  const auto twice = std::adjacent_find(seen.begin(), seen.end());
  if (twice == seen.end()) return;
  blame(definition, TAV_ERR_CONFLICT, TAV_FLD_SQL_TABLE,
        join({"has the table ", quoted(*twice), " twice"}), result);
}

// Entries with the same parent are stored in one table, so their columns must differ.
static void check_columns(const class_def& definition, findings& result) {
  std::vector<const entry_def*> scalars;
  for (const entry_def& entry : definition.entries) {
    if (dd_is_container(entry.type) || entry.type == TAV_FLDT_BUF) continue;
    if (entry.values[ENTRY_SQL_NAME] != nullptr) scalars.push_back(&entry);
  }
  const auto compare = [](const entry_def* a, const entry_def* b) {
    if (a->parent != b->parent) return a->parent - b->parent;
    return dd_compare(text_of(*a, ENTRY_SQL_NAME), text_of(*b, ENTRY_SQL_NAME));
  };
  std::sort(scalars.begin(), scalars.end(),
            [&](const entry_def* a, const entry_def* b) { return compare(a, b) < 0; });
  for (size_t i = 1; i < scalars.size(); ++i) {
    if (compare(scalars[i - 1], scalars[i]) != 0) continue;
    blame(definition, *scalars[i], TAV_ERR_CONFLICT, TAV_FLD_SQL_TABLE,
          join({"has the column ", quoted(text_of(*scalars[i], ENTRY_SQL_NAME)),
                ", which another field of its table has"}),
          result);
  }
}

std::vector<std::string> tables_of(const class_def& definition) {
  std::vector<std::string> tables;
  const char* table = text_of(definition, CLASS_TABLE);
  if (*table != '\0') tables.emplace_back(table);
  for (const entry_def& entry : definition.entries) {
    const char* name = text_of(entry, ENTRY_SQL_NAME);
    if (entry.type == TAV_FLDT_BUF) tables.emplace_back(storage_of_buf(name).table);
    if (dd_is_container(entry.type)) tables.emplace_back(name);
  }
  return tables;
}

const char* needless_table(const class_def& definition) {
  const bool needs_one = !dd_is_subclass(text_of(definition, CLASS_NAME));
  return needs_one ? nullptr : static_cast<const char*>(definition.values[CLASS_TABLE]);
}

void check_storage(const class_def& definition, class_world& world,
                   std::vector<std::string>& tables, findings& result) {
  collect_tables(definition, tables, result);
  check_tables(definition, world, tables, result);
  if (may_repeat(definition, ENTRY_SQL_NAME)) check_columns(definition, result);
}

}  // namespace dm
