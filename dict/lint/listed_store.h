// A dictionary's content in lists, as a store that can be asked and not written to.
#ifndef DICT_LINT_LISTED_STORE_H
#define DICT_LINT_LISTED_STORE_H

#include <string>
#include <vector>

#include "dm/class_json.h"
#include "dm/store.h"

namespace dict {

struct stored_class {
  std::string key;
  const tav_node* node;
};

struct stored_table {
  std::string key;
  std::string name;
  int64_t class_id;
};

// Borrows the lists. Ids of classes are their places and 1.
struct listed_store : dm::store {
  std::vector<dm::field_row> fields;
  std::vector<stored_class> known;  // ascending by key
  std::vector<stored_table> tables;
  dm::class_writer writer;

  listed_store(const tav_flist_t* field_list, const tav_flist_t* class_list);
  listed_store(const listed_store&) = delete;
  listed_store& operator=(const listed_store&) = delete;

  // The class of that name, or null.
  const stored_class* find(const char* name) const;
};

}  // namespace dict

#endif
