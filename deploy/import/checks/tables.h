// The tables that classes use and the columns in them, as they are collected and checked.
#ifndef DEPLOY_IMPORT_CHECKS_TABLES_H
#define DEPLOY_IMPORT_CHECKS_TABLES_H

#include <deque>
#include <string>
#include <vector>

#include "deploy/import/entries.h"

namespace deploy {

// Where a table or column stands among all; of none NO_PLACE.
using place = uint32_t;
inline constexpr place NO_PLACE = UINT32_MAX;

// A use of a table.
struct table_use {
  const char* name;
  const char* class_name = nullptr;  // whose it is
  const char* field = nullptr;       // of the entry that names it; null for the class's own
  siblings entries{};                // in whose columns it is used: see is_column; a BUF's has none
  place around = NO_PLACE;           // the use of the table that the entry stands in
  bool is_serializable = false;      // may be shared; the collection itself finds no such use
};

// The uses of tables in the order found. Names are borrowed from the classes or kept here.
struct table_uses {
  bool keeps_entries;      // else only the tables are asked for, and the classes need not stay
  bool tells_all = false;  // a column without a table does not end the collection
  std::vector<table_use> uses{};
  std::deque<std::string> names{};
};

// Whether the entry, whose definition has been sought, names a column of the table that it stands
// in. That of a BUF is in a table of its own.
bool is_column(const class_entry& entry);

// Adds a use of a table and gives its place. Throws std::bad_alloc.
place add_table(table_uses& tables, const table_use& use);

}  // namespace deploy

// Collects the tables and columns of a class's entries, whose definitions have been sought. The
// table's place and name are those of the class, where it has them. 1 also when faults were
// reported, -1 on a failure that stops the check.
int tav_deploy_get_table_columns(deploy::table_uses& tables, deploy::place table,
                                 deploy::siblings entries, const char* table_name,
                                 const char* class_name);

namespace deploy {

// How often each name is used; counted once, at the first question.
struct table_counts {
  struct uses {
    int32_t all = 0;
    int32_t serializable = 0;
    place last = 0;
  };

  const table_uses& tables;  // must not change once counted
  bool counted = false;
  std::vector<uses> by_place{};               // a name's at its first place
  dd_index<dd_by_name, place> first_place{};  // of each name
};

}  // namespace deploy

// The number of uses; 1 for a table used more than once of which a use is serializable; -1 when
// they cannot be counted, which is told.
int tav_deploy_count_table_by_name(deploy::table_counts& counts, const char* name);

namespace deploy {

// Reports tables of `tables` that stand more than once in `all_tables`, and columns that stand more
// than once in a table: 1, or -1.
int check_unique_names(const table_uses& tables, const table_uses& all_tables);

}  // namespace deploy

#endif
