// What a database holds, in names.
#ifndef DICT_LIST_LIST_H
#define DICT_LIST_LIST_H

#include <string>
#include <string_view>
#include <vector>

#include "dict/reading.h"
#include "dm/journal/read.h"

namespace dict {

struct listed_field {
  std::string name, type;
  int32_t number;
  bool is_predefined;
  std::string descr;
};

struct listed_class {
  std::string name;
  // In a tree: how many classes it stands below, and how much of its name is the nearest one's.
  size_t depth = 0;
  size_t above = 0;
};

struct listed_table {
  std::string name, class_name;
};

struct listing {
  bool has_fields, has_classes, has_tables;  // what was asked for
  std::vector<listed_field> fields{};        // in ascending number
  std::vector<listed_class> classes{};       // each before those below it
  std::vector<listed_table> tables{};
};

// Whether the name fits the pattern, without regard to ASCII case: "*" stands for any text, "?" for
// any one character. An empty pattern fits all.
bool fits(std::string_view pattern, std::string_view name);

// Whose names are listed: those of a database as it is, or as it was.
struct list_source {
  reading& from;
  const dm::past* at = nullptr;  // what was different then; null: now
};

// Lists what fits; false with the reason. In a tree, the classes above one that fits are there too.
bool find_listed(const list_source& source, const std::string& pattern, bool is_tree,
                 listing& found, dm::problem& why);

// To standard output.
void print_text(const listing& found);
void print_tree(const listing& found);
void print_json(const listing& found, bool is_tree);

}  // namespace dict

#endif
