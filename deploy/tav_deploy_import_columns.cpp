// Collects the tables and columns that the entries of a class name.
#include <string>
#include <string_view>
#include <utility>

#include "dd/values.h"
#include "dd/walk.h"
#include "deploy/tav_deploy.h"
#include "deploy/tav_deploy_import_tables.h"
#include "deploy/tav_deploy_lookup.h"
#include "deploy/tav_deploy_report.h"

static constexpr char MODULE[] = "tav_deploy_import";
static constexpr char MISSING_TABLE[] = "missing tablename for array/substruct";

using enum tav_deploy_raises;

namespace {

// Where the entries of a container are collected.
struct target {
  tav_deploy_tables& tables;
  tav_flist_t* table;      // null for none
  const char* table_name;  // null for none
  dd_list& fields;
};

struct buf_storage {
  std::string table;
  std::string column;
};

}  // namespace

int tav_deploy_storage_failed(dd_site site, const tav_ebuf& ebuf, const char* log_text) {
  tav_deploy_raise_error();
  return tav_deploy_call_failed(site, ebuf, log_text);
}

tav_flist_t* tav_deploy_add_table(tav_deploy_tables& tables, const char* name, tav_ebuf* ebuf) {
  dd_flist table(tav_flist_create(at(ebuf, HERE)));
  dd_set_text(table.get(), TAV_FLD_NAME, name, at(ebuf, HERE));
  tav_flist_t* borrowed = table.get();
  tables.list.append(std::move(table), at(ebuf, HERE));
  return dd_failed(*ebuf) ? nullptr : borrowed;
}

static void add_column(const target& to, tav_flist_t* table, const char* name, tav_ebuf* ebuf) {
  if (!to.tables.keeps_columns) return;
  const int32_t id = tav_flist_elem_count(table, TAV_FLD_FIELD, at(ebuf, HERE));
  tav_flist_t* column = tav_flist_elem_add(table, TAV_FLD_FIELD, id, at(ebuf, HERE));
  if (column != nullptr) dd_set_text(column, TAV_FLD_FIELD_NAME, name, at(ebuf, HERE));
}

// The type of a field's definition; 0 after a report where there is none.
static int32_t defined_type(dd_list& fields, const char* name, tav_ebuf* ebuf) {
  tav_flist_t* definition = tav_deploy_get_field_by_name(fields, name);
  if (definition == nullptr) {
    tav_deploy_report(HERE, ERROR, "missing field definition", "Error: Field %s not defined\n",
                      name);
    return 0;
  }
  const int32_t* type = dd_int_or_null(definition, TAV_FLD_FIELD_TYPE, at(ebuf, HERE));
  if (type != nullptr) return *type;
  if (dd_failed(*ebuf)) return 0;
  tav_deploy_report(HERE, ERROR, "missing field type definition",
                    "Error: Field %s has no type definition\n", name);
  return 0;
}

// What follows the mark, up to the next blank; empty where the mark does not stand.
static std::string_view after(std::string_view text, std::string_view mark) {
  const size_t found = text.find(mark);
  if (found == text.npos) return {};
  text.remove_prefix(found + mark.size());
  return text.substr(0, text.find(' '));
}

// Takes "C=column T=table" apart. The column is sought only in what ends with the table.
static buf_storage split(std::string_view text) {
  const std::string_view table = after(text, "T=");
  if (table.data() != nullptr) {
    text = text.substr(0, static_cast<size_t>(table.data() - text.data()) + table.size());
  }
  return {std::string(table), std::string(after(text, "C="))};
}

static int collect_buf(const target& to, const char* name, const char* storage) {
  if (*storage == '\0') {
    tav_deploy_report(HERE, ERROR, "missing tablename/column for BUF",
                      "Error: missing table name and column name for BUF: %s\n", name);
    return 1;
  }
  tav_ebuf ebuf{};
  const buf_storage names = split(storage);
  tav_flist_t* table = nullptr;
  if (names.table.empty()) {
    tav_deploy_report(HERE, ERROR, "missing table name for BUF field",
                      "Error: missing table name for BUF field %s\n", name);
  } else {
    table = tav_deploy_add_table(to.tables, names.table.c_str(), &ebuf);
    if (table == nullptr) return tav_deploy_storage_failed(HERE, ebuf, MISSING_TABLE);
  }
  if (names.column.empty()) {
    tav_deploy_report(HERE, ERROR, "missing column name for BUF field",
                      "Error: missing column name for BUF field %s in table: %s\n", name,
                      names.table.c_str());
    return 1;
  }
  if (table != nullptr) add_column(to, table, names.column.c_str(), &ebuf);
  if (!dd_failed(ebuf)) return 1;
  return tav_deploy_storage_failed(HERE, ebuf, "Error while handling BUF column");
}

static int collect_nested(const target& to, tav_flist_t* entry, const char* name,
                          const char* storage) {
  tav_ebuf ebuf{};
  tav_flist_t* table = nullptr;
  if (*storage == '\0') {
    tav_deploy_report(HERE, ERROR, MISSING_TABLE,
                      "Error: missing tablename for array/substruct: %s\n", name);
  } else {
    table = tav_deploy_add_table(to.tables, storage, &ebuf);
    if (table == nullptr) return tav_deploy_storage_failed(HERE, ebuf, MISSING_TABLE);
  }
  const char* table_name = table != nullptr ? storage : nullptr;
  if (tav_deploy_get_table_columns(to.tables, table, entry, to.fields, table_name) >= 1) return 1;
  return tav_deploy_fail(HERE, "Error: while determining table/column names",
                         "Error: while determining table/column names\n");
}

static int collect_column(const target& to, const char* name, const char* storage) {
  if (to.table_name == nullptr || to.table == nullptr) {
    tav_deploy_report(HERE, ERROR, "column without table", "Error: Column without Table\n");
    return -1;
  }
  if (*storage == '\0') {
    // The log text lacks its first letter: administrators search for it as it is.
    tav_deploy_report(HERE, ERROR, "issing column name for field",
                      "Error: missing column name for field %s in table: %s\n", name,
                      to.table_name);
    return 1;
  }
  tav_ebuf ebuf{};
  add_column(to, to.table, storage, &ebuf);
  return dd_failed(ebuf) ? tav_deploy_storage_failed(HERE, ebuf, MISSING_TABLE) : 1;
}

static int collect_entry(const target& to, tav_flist_t* entry, tav_ebuf* ebuf) {
  const char* name = dd_text(entry, TAV_FLD_FIELD_NAME, at(ebuf, HERE));
  const char* storage = dd_text(entry, TAV_FLD_SQL_TABLE, at(ebuf, HERE));
  if (dd_failed(*ebuf)) return 1;
  const int32_t type = defined_type(to.fields, name, ebuf);
  if (dd_failed(*ebuf)) return 1;
  switch (type) {
    case TAV_FLDT_BUF:
      return collect_buf(to, name, storage);
    case TAV_FLDT_ARRAY:
    case TAV_FLDT_SUBSTRUCT:
      return collect_nested(to, entry, name, storage);
    default:
      return collect_column(to, name, storage);
  }
}

int tav_deploy_get_table_columns(tav_deploy_tables& tables, tav_flist_t* table,
                                 tav_flist_t* container, dd_list& fields, const char* table_name) {
  tav_ebuf ebuf{};
  dd_walk walk(container, TAV_FLD_OBJ_ELEM);
  while (tav_flist_t* entry = walk.next(at(&ebuf, HERE))) {
    if (collect_entry({tables, table, table_name, fields}, entry, &ebuf) < 1) return -1;
  }
  return dd_failed(ebuf) ? tav_deploy_storage_failed(HERE, ebuf, "Flist error") : 1;
}
