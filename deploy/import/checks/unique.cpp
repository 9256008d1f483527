// Whether tables and columns are named once.
#include "dd/memory.h"
#include "deploy/import/checks/tables.h"
#include "deploy/report.h"

static constexpr char MODULE[] = "tav_deploy_import";

using enum tav_deploy_raises;

static void count_all(tav_deploy_table_counts& counts) {
  counts.by_place.assign(counts.tables.uses.size(), {});
  counts.first_place.clear();
  for (size_t place = 0; place < counts.tables.uses.size(); ++place) {
    const tav_deploy_table& table = counts.tables.uses[place];
    const size_t first = counts.first_place.add_first(table.name, place);
    ++counts.by_place[first].all;
    if (table.is_serializable) ++counts.by_place[first].serializable;
  }
  counts.counted = true;
}

int tav_deploy_count_table_by_name(tav_deploy_table_counts& counts, const char* name) {
  tav_ebuf ebuf{};
  if (!counts.counted) dd_with_memory(at(&ebuf, HERE), [&] { count_all(counts); });
  if (dd_failed(ebuf)) return tav_deploy_call_failed(HERE, ebuf);
  const size_t* place = counts.first_place.find(name);
  if (place == nullptr) return 0;
  const tav_deploy_table_counts::uses& uses = counts.by_place[*place];
  return uses.all >= 2 && uses.serializable >= 1 ? 1 : uses.all;
}

using column_index = dd_index<dd_by_name, const tav_deploy_column*>;

static void report_repeated(const tav_deploy_tables& tables, const tav_deploy_table& table,
                            column_index& seen) {
  seen.clear();
  for (size_t place = table.first_column; place != TAV_DEPLOY_NONE;
       place = tables.columns[place].next) {
    const tav_deploy_column& column = tables.columns[place];
    if (seen.add_first(column.name, column.hash, &column) == &column) continue;
    tav_deploy_report(HERE, ERROR, "duplicate column name",
                      "Error: duplicate column %s within table: %s\n", column.name, table.name);
  }
}

// The index is the caller's, to be filled anew for each table.
static int check_columns(const tav_deploy_tables& tables, const tav_deploy_table& table,
                         column_index& seen) {
  tav_ebuf ebuf{};
  dd_with_memory(at(&ebuf, HERE), [&] { report_repeated(tables, table, seen); });
  if (!dd_failed(ebuf)) return 1;
  tav_deploy_call_failed(HERE, ebuf);
  return tav_deploy_fail(HERE, "while checking for unique column names",
                         "Error:  while checking for unique column names\n");
}

static int check_tables(const tav_deploy_tables& tables, tav_deploy_table_counts& counts) {
  column_index columns;
  for (const tav_deploy_table& table : tables.uses) {
    const int count = tav_deploy_count_table_by_name(counts, table.name);
    if (count < 0) return -1;
    if (count > 1) {
      tav_deploy_report(HERE, ERROR, "duplicate table name", "Error: duplicate table name: %s\n",
                        table.name);
    }
    if (check_columns(tables, table, columns) < 1) return -1;
  }
  return 1;
}

int tav_deploy_check_unique_names(const tav_deploy_tables& tables,
                                  const tav_deploy_tables& all_tables) {
  tav_deploy_table_counts counts{all_tables};
  if (check_tables(tables, counts) >= 1) return 1;
  return tav_deploy_fail(HERE, "while checking for unique storage names",
                         "Error:  while checking for unique storage names\n");
}
