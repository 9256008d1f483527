// Collects the tables and columns that the entries of a class name.
#include "dd/buf_storage.h"
#include "dd/memory.h"
#include "deploy/import/checks/tables.h"
#include "deploy/modes.h"
#include "deploy/report.h"

static constexpr char MODULE[] = "tav_deploy_import";
static constexpr char MISSING_TABLE[] = "missing tablename for array/substruct";

using enum tav_deploy_raises;

namespace {

// Where entries are collected.
struct target {
  tav_deploy_tables& tables;
  size_t table;            // TAV_DEPLOY_NONE for none
  const char* table_name;  // null for none
  dd_list& fields;
};

// What a BUF's storage names, in the tables' keeping.
struct buf_storage {
  const char* table = "";
  const char* column = "";
};

}  // namespace

int tav_deploy_storage_failed(dd_site site, const tav_ebuf& ebuf, const char* log_text) {
  tav_deploy_raise_error();
  return tav_deploy_call_failed(site, ebuf, log_text);
}

size_t tav_deploy_add_table(tav_deploy_tables& tables, const char* name) {
  tables.uses.push_back({name});
  return tables.uses.size() - 1;
}

// The place of a new use of the table; none, and a failure in the buffer, without memory for it.
static size_t add_table(tav_deploy_tables& tables, const char* name, tav_ebuf* ebuf) {
  size_t place = TAV_DEPLOY_NONE;
  dd_with_memory(ebuf, [&] { place = tav_deploy_add_table(tables, name); });
  return place;
}

static void add_column(tav_deploy_tables& tables, size_t table, const char* name, uint32_t hash,
                       tav_ebuf* ebuf) {
  if (!tables.keeps_columns) return;
  dd_with_memory(ebuf, [&] { tables.columns.push_back({name, hash}); });
  if (dd_failed(*ebuf)) return;
  tav_deploy_table& use = tables.uses[table];
  const size_t column = tables.columns.size() - 1;
  const bool is_first = use.last_column == TAV_DEPLOY_NONE;
  (is_first ? use.first_column : tables.columns[use.last_column].next) = column;
  use.last_column = column;
}

// The type of the field's definition; 0 after a report where there is none.
static int32_t defined_type(dd_list& fields, tav_deploy_entry& entry) {
  if (!tav_deploy_find_definition(entry, fields)) {
    tav_deploy_report(HERE, ERROR, "missing field definition", "Error: Field %s not defined\n",
                      entry.name);
    return 0;
  }
  if (!entry.defined_type) {
    tav_deploy_report(HERE, ERROR, "missing field type definition",
                      "Error: Field %s has no type definition\n", entry.name);
  }
  return entry.defined_type.value_or(0);
}

static buf_storage split(tav_deploy_tables& tables, const char* text) {
  const auto [column, table] = dd_split_buf(text);
  const char* kept = tables.names.emplace_back(table).c_str();
  return {kept, tables.names.emplace_back(column).c_str()};
}

static int collect_buf(const target& to, const tav_deploy_entry& entry) {
  if (!entry.has_storage) {
    tav_deploy_report(HERE, ERROR, "missing tablename/column for BUF",
                      "Error: missing table name and column name for BUF: %s\n", entry.name);
    return 1;
  }
  tav_ebuf ebuf{};
  buf_storage names;
  size_t table = TAV_DEPLOY_NONE;
  dd_with_memory(at(&ebuf, HERE), [&] { names = split(to.tables, entry.storage); });
  if (*names.table != '\0') {
    table = add_table(to.tables, names.table, at(&ebuf, HERE));
  } else if (!dd_failed(ebuf)) {
    tav_deploy_report(HERE, ERROR, "missing table name for BUF field",
                      "Error: missing table name for BUF field %s\n", entry.name);
  }
  if (dd_failed(ebuf)) return tav_deploy_storage_failed(HERE, ebuf, MISSING_TABLE);
  if (*names.column == '\0') {
    tav_deploy_report(HERE, ERROR, "missing column name for BUF field",
                      "Error: missing column name for BUF field %s in table: %s\n", entry.name,
                      names.table);
    return 1;
  }
  if (table != TAV_DEPLOY_NONE) {
    add_column(to.tables, table, names.column, dd_hash(names.column), at(&ebuf, HERE));
  }
  if (!dd_failed(ebuf)) return 1;
  return tav_deploy_storage_failed(HERE, ebuf, "Error while handling BUF column");
}

// The entry's own table, none after a report where it names none; false when it cannot be kept.
static bool find_table(const target& to, const tav_deploy_entry& entry, size_t& table) {
  if (!entry.has_storage) {
    tav_deploy_report(HERE, ERROR, MISSING_TABLE,
                      "Error: missing tablename for array/substruct: %s\n", entry.name);
    return true;
  }
  tav_ebuf ebuf{};
  table = add_table(to.tables, entry.storage, at(&ebuf, HERE));
  if (!dd_failed(ebuf)) return true;
  tav_deploy_storage_failed(HERE, ebuf, MISSING_TABLE);
  return false;
}

static int collect_nested(const target& to, tav_deploy_entry& entry) {
  size_t table = TAV_DEPLOY_NONE;
  if (!find_table(to, entry, table)) return -1;
  const char* table_name = table != TAV_DEPLOY_NONE ? entry.storage : nullptr;
  if (tav_deploy_get_table_columns(to.tables, table, tav_deploy_nested(entry), to.fields,
                                   table_name) >= 1) {
    return 1;
  }
  return tav_deploy_fail(HERE, "Error: while determining table/column names",
                         "Error: while determining table/column names\n");
}

static int collect_column(const target& to, const tav_deploy_entry& entry) {
  if (to.table_name == nullptr || to.table == TAV_DEPLOY_NONE) {
    tav_deploy_report(HERE, ERROR, "column without table", "Error: Column without Table\n");
    return -1;
  }
  if (!entry.has_storage) {
    // The log text lacks its first letter: administrators search for it as it is.
    tav_deploy_report(HERE, ERROR, "issing column name for field",
                      "Error: missing column name for field %s in table: %s\n", entry.name,
                      to.table_name);
    return 1;
  }
  tav_ebuf ebuf{};
  add_column(to.tables, to.table, entry.storage, entry.storage_hash, at(&ebuf, HERE));
  return dd_failed(ebuf) ? tav_deploy_storage_failed(HERE, ebuf, MISSING_TABLE) : 1;
}

static bool read_storage(tav_deploy_entry& entry) {
  tav_ebuf ebuf{};
  tav_deploy_storage_of(entry, &ebuf);
  if (!dd_failed(ebuf)) return true;
  tav_deploy_storage_failed(HERE, ebuf, "Flist error");
  return false;
}

// Error buffers stay out of what calls itself: entries may be nested ten thousand levels deep.
static int collect_entry(const target& to, tav_deploy_entry& entry) {
  if (!read_storage(entry)) return -1;
  switch (defined_type(to.fields, entry)) {
    case TAV_FLDT_BUF:
      return collect_buf(to, entry);
    case TAV_FLDT_ARRAY:
    case TAV_FLDT_SUBSTRUCT:
      return collect_nested(to, entry);
    default:
      return collect_column(to, entry);
  }
}

int tav_deploy_get_table_columns(tav_deploy_tables& tables, size_t table,
                                 tav_deploy_siblings entries, dd_list& fields,
                                 const char* table_name) {
  const target to{tables, table, table_name, fields};
  for (tav_deploy_entry& entry : entries) {
    if (collect_entry(to, entry) < 1) return -1;
  }
  return 1;
}
