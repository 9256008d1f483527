// Lists of tables: scratch lists with a TAV_FLD_ARGS element per use of a table, in the order
// found. It holds TAV_FLD_NAME, and a TAV_FLD_FIELD element with TAV_FLD_FIELD_NAME per column.
#ifndef DEPLOY_TAV_DEPLOY_IMPORT_TABLES_H
#define DEPLOY_TAV_DEPLOY_IMPORT_TABLES_H

#include <unordered_map>

#include "dd/list.h"

struct tav_deploy_tables {
  bool keeps_columns;  // else only the tables are asked for, and columns are checked but not added
  dd_list list{DD_TABLES};
};

// Adds a use of a table and gives it, borrowed; null on failure.
tav_flist_t* tav_deploy_add_table(tav_deploy_tables& tables, const char* name, tav_ebuf* ebuf);

// Collects the tables and columns of a container's entries: a class's, or a nested entry's. The
// table (borrowed) and its name are those of the container, where it has them. 1 also when faults
// were reported, -1 on a failure that stops the check.
int tav_deploy_get_table_columns(tav_deploy_tables& tables, tav_flist_t* table,
                                 tav_flist_t* container, dd_list& fields, const char* table_name);

// A failed call in the storage checks: told, and the error flag raised; gives -1.
int tav_deploy_storage_failed(dd_site site, const tav_ebuf& ebuf, const char* log_text);

// How often a list of tables has each name; counted once, at the first question.
struct tav_deploy_table_counts {
  struct uses {
    int32_t all = 0;
    int32_t serializable = 0;
  };
  struct hash {
    size_t operator()(const char* name) const { return dd_hash(name); }
  };
  struct equal {
    bool operator()(const char* a, const char* b) const { return dd_equal(a, b); }
  };

  dd_list& tables;  // must not change once counted
  bool counted = false;
  std::unordered_map<const char*, uses, hash, equal> by_name{};
};

// The number of uses; 1 for a table used more than once of which a use is serializable; -1 when
// the list cannot be walked, which is told.
int tav_deploy_count_table_by_name(tav_deploy_table_counts& counts, const char* name);

// Reports tables of `tables` that stand more than once in `all_tables`, and columns that stand more
// than once in a table: 1, or -1.
int tav_deploy_check_unique_names(dd_list& tables, dd_list& all_tables);

#endif
