// Collects the tables and columns that the entries of a class name.
#include "dd/buf_storage.h"
#include "dd/memory.h"
#include "deploy/import/checks/tables.h"
#include "deploy/modes.h"
#include "deploy/report.h"

static constexpr char MODULE[] = "tav_deploy_import";

using enum deploy::definition_side;

namespace {

// Where entries are collected.
struct target {
  deploy::table_uses& tables;
  deploy::place table;     // deploy::NO_PLACE for none
  const char* table_name;  // null for none
  deploy::entry_scope scope;
};

// What a BUF's storage names, in the tables' keeping.
struct buf_storage {
  const char* table = "";
  const char* column = "";
};

}  // namespace

static deploy::subject subject_of(const target& to, const deploy::class_entry& entry,
                                  const char* attribute = nullptr) {
  deploy::subject about = to.scope.of(entry.name, IMPLEMENTATION);
  about.table = to.table_name;
  about.attribute = attribute;
  return about;
}

deploy::place deploy::add_table(deploy::table_uses& tables, const deploy::table_use& use) {
  tables.uses.push_back(use);
  return static_cast<deploy::place>(tables.uses.size() - 1);
}

// The place of a new use of the table; none, and a failure in the buffer, without memory for it.
static deploy::place add_table(const target& to, const deploy::class_entry& entry, const char* name,
                               tav_ebuf* ebuf) {
  deploy::place place = deploy::NO_PLACE;
  const deploy::table_use use{name, to.scope.class_name, entry.name, to.table};
  dd_with_memory(ebuf, [&] { place = deploy::add_table(to.tables, use); });
  return place;
}

static void add_column(deploy::table_uses& tables, deploy::place table,
                       const deploy::column_use& added, tav_ebuf* ebuf) {
  if (!tables.keeps_columns) return;
  dd_with_memory(ebuf, [&] { tables.columns.push_back(added); });
  if (dd_failed(*ebuf)) return;
  deploy::table_use& use = tables.uses[table];
  const auto column = static_cast<deploy::place>(tables.columns.size() - 1);
  const bool is_first = use.last_column == deploy::NO_PLACE;
  (is_first ? use.first_column : tables.columns[use.last_column].next) = column;
  use.last_column = column;
}

// The type of the field's definition; 0 after a report where there is none.
static int32_t defined_type(const target& to, const deploy::class_entry& entry) {
  if (!entry.is_defined) {
    deploy::report(HERE, "field-not-defined", to.scope.of(entry.name));
    return 0;
  }
  if (!entry.defined_type) {
    deploy::report(HERE, "field-without-type", to.scope.of(entry.name));
  }
  return entry.defined_type.value_or(0);
}

static buf_storage split(deploy::table_uses& tables, const char* text) {
  const auto [column, table] = dd_split_buf(text);
  const char* kept = tables.names.emplace_back(table).c_str();
  return {kept, tables.names.emplace_back(column).c_str()};
}

static int collect_buf(const target& to, const deploy::class_entry& entry) {
  if (!entry.has_storage()) {
    deploy::report(HERE, "missing-buf-storage", subject_of(to, entry));
    return 1;
  }
  tav_ebuf ebuf{};
  buf_storage names;
  deploy::place table = deploy::NO_PLACE;
  dd_with_memory(at(&ebuf, HERE), [&] { names = split(to.tables, entry.storage); });
  if (*names.table != '\0') {
    table = add_table(to, entry, names.table, at(&ebuf, HERE));
  } else if (!dd_failed(ebuf)) {
    deploy::report(HERE, "missing-buf-table", subject_of(to, entry, "SQL_TABLE"));
  }
  if (dd_failed(ebuf)) return deploy::call_failed(HERE, ebuf, "table-not-kept");
  if (*names.column == '\0') {
    deploy::subject about = subject_of(to, entry, "SQL_COLUMN");
    about.table = names.table;
    deploy::report(HERE, "missing-buf-column", about);
    return 1;
  }
  if (table != deploy::NO_PLACE) {
    add_column(to.tables, table, {names.column, entry.name, dd_hash(names.column)},
               at(&ebuf, HERE));
  }
  if (!dd_failed(ebuf)) return 1;
  return deploy::call_failed(HERE, ebuf, "buf-column-not-kept");
}

// The entry's own table, none after a report where it names none; false when it cannot be kept.
static bool find_table(const target& to, const deploy::class_entry& entry, deploy::place& table) {
  if (!entry.has_storage()) {
    deploy::report(HERE, "missing-table", subject_of(to, entry, "SQL_TABLE"));
    return true;
  }
  tav_ebuf ebuf{};
  table = add_table(to, entry, entry.storage, at(&ebuf, HERE));
  if (!dd_failed(ebuf)) return true;
  deploy::call_failed(HERE, ebuf, "table-not-kept");
  return false;
}

static int collect_entries(const target& to, deploy::siblings entries);

static int collect_nested(const target& to, deploy::class_entry& entry) {
  deploy::place table = deploy::NO_PLACE;
  if (!find_table(to, entry, table)) return -1;
  const char* table_name = table != deploy::NO_PLACE ? entry.storage : nullptr;
  const deploy::entry_path path{entry.name, to.scope.around};
  const target nested{to.tables, table, table_name, {to.scope.class_name, &path}};
  if (collect_entries(nested, deploy::nested_in(entry)) >= 1) return 1;
  return deploy::report(HERE, "storage-names-not-collected");
}

static int collect_column(const target& to, const deploy::class_entry& entry) {
  if (to.table_name == nullptr || to.table == deploy::NO_PLACE) {
    deploy::report(HERE, "column-without-table", subject_of(to, entry));
    return to.tables.tells_all ? 1 : -1;
  }
  if (!entry.has_storage()) {
    deploy::report(HERE, "missing-column", subject_of(to, entry, "SQL_COLUMN"));
    return 1;
  }
  tav_ebuf ebuf{};
  add_column(to.tables, to.table, {entry.storage, entry.name, entry.storage_hash}, at(&ebuf, HERE));
  return dd_failed(ebuf) ? deploy::call_failed(HERE, ebuf, "table-not-kept") : 1;
}

// Error buffers stay out of what calls itself: entries may be nested ten thousand levels deep.
static int collect_entry(const target& to, deploy::class_entry& entry) {
  switch (defined_type(to, entry)) {
    case TAV_FLDT_BUF:
      return collect_buf(to, entry);
    case TAV_FLDT_ARRAY:
    case TAV_FLDT_SUBSTRUCT:
      return collect_nested(to, entry);
    default:
      return collect_column(to, entry);
  }
}

static int collect_entries(const target& to, deploy::siblings entries) {
  for (deploy::class_entry& entry : entries) {
    if (collect_entry(to, entry) < 1) return -1;
  }
  return 1;
}

int tav_deploy_get_table_columns(deploy::table_uses& tables, deploy::place table,
                                 deploy::siblings entries, const char* table_name,
                                 const char* class_name) {
  return collect_entries({tables, table, table_name, {class_name}}, entries);
}
