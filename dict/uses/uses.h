// What uses a field, a class or a table.
#ifndef DICT_USES_USES_H
#define DICT_USES_USES_H

#include <string>
#include <vector>

#include "dict/reading.h"
#include "dm/problem.h"

namespace dict {

// An entry of a class: the names from the top level down to it; none: the class itself.
struct place {
  std::string class_name;
  std::vector<std::string> path{};
};

struct found_field {
  std::string name;
  std::string type;  // keyword
  int32_t number;    // 0: classes use it, but it is not defined
  bool is_predefined;
  std::vector<place> users{};  // by class, in the order of their entries
};

struct found_class {
  std::string name;
  std::vector<std::string> subclasses{};  // at every depth
  struct table {
    std::string name;
    std::vector<std::string> path;  // of the entry that it belongs to
  };
  std::vector<table> tables{};
};

struct found_table {
  std::string name;
  place owner;
  struct column {
    std::string name;
    std::vector<std::string> path;
  };
  std::vector<column> columns{};
};

// All that one name can mean; fields also by number.
struct uses {
  std::vector<found_field> fields{};
  std::vector<found_class> classes{};
  std::vector<found_table> tables{};
};

// Both give false with the reason.
bool find_uses(reading& from, const std::string& asked, uses& found, dm::problem& why);
// The fields that no class uses and that are not predefined, in ascending number.
bool find_unused(reading& from, std::vector<found_field>& found, dm::problem& why);

// To standard output. `asked` is the word that was asked for.
void print_text(const uses& found);
void print_text(const std::vector<found_field>& unused);
void print_json(const std::string& asked, const uses& found);
void print_json(const std::vector<found_field>& unused);

}  // namespace dict

#endif
