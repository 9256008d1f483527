// The storage names of all classes: every one is there, and stands once.
#include "dd/class_names.h"
#include "dd/memory.h"
#include "dd/values.h"
#include "deploy/import/checks/tables.h"
#include "deploy/import/import.h"
#include "deploy/report.h"

static constexpr char MODULE[] = "tav_deploy_import";

using enum deploy::definition_side;

namespace {

// A class as the collection reads it.
struct class_table {
  const char* class_name;
  const char* table;  // null for none
  bool may_name_table;
};

// One collection: over which classes, into which tables, and what a failure is called.
struct collection {
  dd_list& classes;  // those that are lent to it are new
  deploy::table_uses& tables;
  deploy::finding failure;
};

// What both ask.
struct dictionary {
  dd_list& fields;
  deploy::class_entries& input;
  std::vector<deploy::class_entry> server_entries{};  // of the class at hand
};

}  // namespace

// An empty table is none. New classes are treated more leniently than the server's: a subclass may
// name a table.
static class_table read_class(tav_flist_t* storable, bool is_new, tav_ebuf* ebuf) {
  const char* name = dd_text(storable, TAV_FLD_NAME, at(ebuf, HERE));
  const char* table = dd_text_or_null(storable, TAV_FLD_SQL_TABLE, at(ebuf, HERE));
  if (table != nullptr && *table == '\0') table = nullptr;
  return {name, table, is_new || !dd_is_subclass(name)};
}

static void check_class_table(const class_table& read) {
  if (read.table == nullptr && !dd_is_subclass(read.class_name)) {
    deploy::report(
        HERE, "missing-class-table",
        {.class_name = read.class_name, .side = IMPLEMENTATION, .attribute = "SQL_TABLE"});
  }
  if (read.table != nullptr && !read.may_name_table) {
    deploy::report(HERE, "table-in-subclass",
                   {.class_name = read.class_name,
                    .side = IMPLEMENTATION,
                    .table = read.table,
                    .attribute = "SQL_TABLE"});
  }
}

static int collect_class(deploy::table_uses& tables, tav_flist_t* storable, bool is_new,
                         dictionary& known, tav_ebuf* ebuf) {
  const class_table read = read_class(storable, is_new, ebuf);
  if (dd_failed(*ebuf)) return 1;
  check_class_table(read);
  deploy::place table = deploy::NO_PLACE;
  if (read.table != nullptr && read.may_name_table) {
    dd_with_memory(at(ebuf, HERE), [&] {
      table = deploy::add_table(tables, {read.table, read.class_name});
    });
    if (dd_failed(*ebuf)) return 1;
  }
  tav_ebuf entries_ebuf{};
  const deploy::siblings entries =
      is_new ? deploy::entries_of(known.input, storable, &entries_ebuf)
             : deploy::read_entries(known.server_entries, storable, &entries_ebuf);
  if (!is_new) deploy::read_all_storage(entries, &entries_ebuf);
  if (dd_failed(entries_ebuf)) return deploy::call_failed(HERE, entries_ebuf, "storage-not-read");
  if (!is_new) deploy::find_definitions(entries, known.fields);
  return tav_deploy_get_table_columns(tables, table, entries, read.table, read.class_name);
}

static int collect(const collection& from, dictionary& known) {
  tav_ebuf ebuf{};
  dd_list_walk walk(from.classes);
  while (tav_flist_t* storable = walk.next(at(&ebuf, HERE))) {
    if (collect_class(from.tables, storable, walk.is_lent(), known, &ebuf) >= 1) continue;
    return deploy::report(HERE, from.failure);
  }
  return dd_failed(ebuf) ? deploy::call_failed(HERE, ebuf, "class-table-not-read") : 1;
}

// The working classes include the run's own: a table of a new class is found there once, and a
// second time only if another class has it too.
int deploy::import_storage(deploy::import_state& state) {
  deploy::table_uses all_tables{.keeps_entries = false, .tells_all = state.tells_all};
  deploy::table_uses tables{.keeps_entries = true, .tells_all = state.tells_all};
  dictionary known{state.working_fields, state.entries};
  const collection collections[] = {
      {state.working_classes, all_tables, "server-storage-not-collected"},
      {state.ordered_classes, tables, "new-storage-not-collected"},
  };
  for (const collection& from : collections) {
    if (collect(from, known) < 1) return -1;
  }
  return deploy::check_unique_names(tables, all_tables);
}
