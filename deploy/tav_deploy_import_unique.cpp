// Whether tables and columns are named once.
#include "dd/index.h"
#include "dd/values.h"
#include "dd/walk.h"
#include "deploy/tav_deploy_import_tables.h"
#include "deploy/tav_deploy_report.h"

static constexpr char MODULE[] = "tav_deploy_import";

using enum tav_deploy_raises;

static int count_all(tav_deploy_table_counts& counts) {
  counts.by_name.clear();
  tav_ebuf ebuf{};
  dd_walk walk(counts.tables.get(), TAV_FLD_ARGS);
  while (tav_flist_t* table = walk.next(at(&ebuf, HERE))) {
    const char* name = dd_text(table, TAV_FLD_NAME, at(&ebuf, HERE));
    const bool serializable = dd_int(table, TAV_FLD_SERIALIZABLE, at(&ebuf, HERE)) == 1;
    if (dd_failed(ebuf)) break;
    tav_deploy_table_counts::uses& uses = counts.by_name[name];
    ++uses.all;
    if (serializable) ++uses.serializable;
  }
  counts.counted = !dd_failed(ebuf);
  return counts.counted ? 1 : tav_deploy_call_failed(HERE, ebuf);
}

int tav_deploy_count_table_by_name(tav_deploy_table_counts& counts, const char* name) {
  if (!counts.counted && count_all(counts) < 1) return -1;
  const auto found = counts.by_name.find(name);
  if (found == counts.by_name.end()) return 0;
  const tav_deploy_table_counts::uses& uses = found->second;
  return uses.all >= 2 && uses.serializable >= 1 ? 1 : uses.all;
}

// The index is the caller's, to be filled anew for each table.
static int check_columns(tav_flist_t* table, const char* table_name, dd_index<dd_by_name>& seen) {
  tav_ebuf ebuf{};
  seen.clear();
  dd_walk walk(table, TAV_FLD_FIELD);
  while (tav_flist_t* column = walk.next(at(&ebuf, HERE))) {
    const char* name = dd_text(column, TAV_FLD_FIELD_NAME, at(&ebuf, HERE));
    if (dd_failed(ebuf)) break;
    if (seen.add_first(name, column) == column) continue;
    tav_deploy_report(HERE, ERROR, "duplicate column name",
                      "Error: duplicate column %s within table: %s\n", name, table_name);
  }
  if (!dd_failed(ebuf)) return 1;
  tav_deploy_call_failed(HERE, ebuf);
  return tav_deploy_fail(HERE, "while checking for unique column names",
                         "Error:  while checking for unique column names\n");
}

static int check_table(tav_flist_t* table, tav_deploy_table_counts& counts,
                       dd_index<dd_by_name>& columns, tav_ebuf* ebuf) {
  const char* name = dd_text(table, TAV_FLD_NAME, at(ebuf, HERE));
  if (dd_failed(*ebuf)) return 1;
  const int count = tav_deploy_count_table_by_name(counts, name);
  if (count < 0) return -1;
  if (count > 1) {
    tav_deploy_report(HERE, ERROR, "duplicate table name", "Error: duplicate table name: %s\n",
                      name);
  }
  return check_columns(table, name, columns);
}

static int check_tables(dd_list& tables, tav_deploy_table_counts& counts) {
  tav_ebuf ebuf{};
  dd_index<dd_by_name> columns;
  dd_walk walk(tables.get(), TAV_FLD_ARGS);
  while (tav_flist_t* table = walk.next(at(&ebuf, HERE))) {
    if (check_table(table, counts, columns, &ebuf) < 1) return -1;
  }
  return dd_failed(ebuf) ? tav_deploy_call_failed(HERE, ebuf) : 1;
}

int tav_deploy_check_unique_names(dd_list& tables, dd_list& all_tables) {
  tav_deploy_table_counts counts{all_tables};
  if (check_tables(tables, counts) >= 1) return 1;
  return tav_deploy_fail(HERE, "while checking for unique storage names",
                         "Error:  while checking for unique storage names\n");
}
