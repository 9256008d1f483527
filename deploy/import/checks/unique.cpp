// Whether tables and columns are named once.
#include "dd/memory.h"
#include "deploy/import/checks/tables.h"
#include "deploy/report.h"

static constexpr char MODULE[] = "tav_deploy_import";

using enum deploy::definition_side;

static void count_all(deploy::table_counts& counts) {
  counts.by_place.assign(counts.tables.uses.size(), {});
  counts.first_place.clear();
  for (deploy::place place = 0; place < counts.tables.uses.size(); ++place) {
    const deploy::table_use& table = counts.tables.uses[place];
    const deploy::place first = counts.first_place.add_first(table.name, place);
    ++counts.by_place[first].all;
    counts.by_place[first].last = place;
    if (table.is_serializable) ++counts.by_place[first].serializable;
  }
  counts.counted = true;
}

int tav_deploy_count_table_by_name(deploy::table_counts& counts, const char* name) {
  tav_ebuf ebuf{};
  if (!counts.counted) dd_with_memory(at(&ebuf, HERE), [&] { count_all(counts); });
  if (dd_failed(ebuf)) return deploy::call_failed(HERE, ebuf);
  const deploy::place* place = counts.first_place.find(name);
  if (place == nullptr) return 0;
  const deploy::table_counts::uses& uses = counts.by_place[*place];
  return uses.all >= 2 && uses.serializable >= 1 ? 1 : uses.all;
}

using column_index = dd_index<dd_by_name, const deploy::class_entry*>;

// The entries from a use's outwards; told to a sink only.
static std::vector<deploy::entry_path> path_from(const deploy::table_uses& tables,
                                                 deploy::place use) {
  std::vector<deploy::entry_path> path;
  if (!deploy::has_sink()) return path;
  for (; use != deploy::NO_PLACE; use = tables.uses[use].around) {
    if (tables.uses[use].field != nullptr) path.push_back({tables.uses[use].field});
  }
  for (size_t i = 1; i < path.size(); ++i) path[i - 1].around = &path[i];
  return path;
}

static void report_column(const deploy::table_uses& tables, deploy::place use,
                          const deploy::class_entry& column) {
  const deploy::table_use& table = tables.uses[use];
  const auto path = path_from(tables, use);
  deploy::report(HERE, "repeated-column",
                 {.class_name = table.class_name,
                  .field = column.name,
                  .around = path.data(),
                  .side = IMPLEMENTATION,
                  .table = table.name,
                  .column = column.storage,
                  .attribute = "SQL_COLUMN"});
}

// The first use of the table's name, or the last one where this is the first.
static const deploy::table_use& other_use(const deploy::table_counts& counts,
                                          const deploy::table_use& table) {
  const deploy::place place = *counts.first_place.find(table.name);
  const deploy::table_use& first = counts.tables.uses[place];
  const bool is_first = first.class_name == table.class_name && first.field == table.field;
  return is_first ? counts.tables.uses[counts.by_place[place].last] : first;
}

static void report_table(const deploy::table_uses& tables, deploy::place use,
                         const deploy::table_counts& counts) {
  const deploy::table_use& table = tables.uses[use];
  const auto path = path_from(tables, table.around);
  deploy::report(HERE, "repeated-table",
                 {.class_name = table.class_name,
                  .related_class = other_use(counts, table).class_name,
                  .field = table.field,
                  .around = path.data(),
                  .side = IMPLEMENTATION,
                  .table = table.name,
                  .attribute = "SQL_TABLE"});
}

static void report_repeated(const deploy::table_uses& tables, deploy::place use,
                            column_index& seen) {
  seen.clear();
  for (const deploy::class_entry& entry : tables.uses[use].entries) {
    if (!deploy::is_column(entry)) continue;
    if (seen.add_first(entry.storage, entry.storage_hash, &entry) == &entry) continue;
    report_column(tables, use, entry);
  }
}

// The index is the caller's, to be filled anew for each table.
static int check_columns(const deploy::table_uses& tables, deploy::place use, column_index& seen) {
  tav_ebuf ebuf{};
  dd_with_memory(at(&ebuf, HERE), [&] { report_repeated(tables, use, seen); });
  if (!dd_failed(ebuf)) return 1;
  deploy::call_failed(HERE, ebuf);
  return deploy::report(HERE, "columns-not-compared");
}

static int check_tables(const deploy::table_uses& tables, deploy::table_counts& counts) {
  column_index columns;
  for (deploy::place use = 0; use < tables.uses.size(); ++use) {
    const int count = tav_deploy_count_table_by_name(counts, tables.uses[use].name);
    if (count < 0) return -1;
    if (count > 1) report_table(tables, use, counts);
    if (check_columns(tables, use, columns) < 1) return -1;
  }
  return 1;
}

int deploy::check_unique_names(const deploy::table_uses& tables,
                               const deploy::table_uses& all_tables) {
  deploy::table_counts counts{all_tables};
  if (check_tables(tables, counts) >= 1) return 1;
  return deploy::report(HERE, "storage-not-compared");
}
