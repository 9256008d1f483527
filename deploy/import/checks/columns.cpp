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

}  // namespace

static deploy::subject subject_of(const target& to, const deploy::class_entry& entry,
                                  const char* attribute = nullptr) {
  deploy::subject about = to.scope.of(entry.name, IMPLEMENTATION);
  about.table = to.table_name;
  about.attribute = attribute;
  return about;
}

bool deploy::is_column(const deploy::class_entry& entry) {
  const int32_t type = entry.defined_type.value_or(0);
  return !dd_is_container(type) && type != TAV_FLDT_BUF && entry.has_storage();
}

deploy::place deploy::add_table(deploy::table_uses& tables, const deploy::table_use& use) {
  tables.uses.push_back(use);
  return static_cast<deploy::place>(tables.uses.size() - 1);
}

// The place of a new use of the table; none, and a failure in the buffer, without memory for it.
static deploy::place add_table(const target& to, const deploy::class_entry& entry, const char* name,
                               tav_ebuf* ebuf) {
  deploy::place place = deploy::NO_PLACE;
  const deploy::table_use use{
      .name = name, .class_name = to.scope.class_name, .field = entry.name, .around = to.table};
  dd_with_memory(ebuf, [&] { place = deploy::add_table(to.tables, use); });
  return place;
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

static int collect_buf(const target& to, const deploy::class_entry& entry) {
  if (!entry.has_storage()) {
    deploy::report(HERE, "missing-buf-storage", subject_of(to, entry));
    return 1;
  }
  tav_ebuf ebuf{};
  const dd_buf_storage named = dd_split_buf(entry.storage);
  const char* name = "";
  dd_with_memory(at(&ebuf, HERE),
                 [&] { name = to.tables.names.emplace_back(named.table).c_str(); });
  if (*name != '\0') {
    add_table(to, entry, name, at(&ebuf, HERE));
  } else if (!dd_failed(ebuf)) {
    deploy::report(HERE, "missing-buf-table", subject_of(to, entry, "SQL_TABLE"));
  }
  if (dd_failed(ebuf)) return deploy::call_failed(HERE, ebuf, "table-not-kept");
  if (!named.column.empty()) return 1;
  deploy::subject about = subject_of(to, entry, "SQL_COLUMN");
  about.table = name;
  deploy::report(HERE, "missing-buf-column", about);
  return 1;
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
  }
  return 1;
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
  if (to.tables.keeps_entries && to.table != deploy::NO_PLACE) {
    to.tables.uses[to.table].entries = entries;
  }
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
