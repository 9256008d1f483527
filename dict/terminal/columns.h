// Rows of cells, each column as wide as its widest cell and two blanks apart. A row stays one line:
// what a terminal would take for an order is written out (dd/visible.h).
#ifndef DICT_TERMINAL_COLUMNS_H
#define DICT_TERMINAL_COLUMNS_H

#include <ostream>
#include <string>
#include <vector>

namespace dict {

struct columns {
  std::vector<std::vector<std::string>> rows{};
  size_t indent = 0;
};
std::ostream& operator<<(std::ostream& out, const columns& table);

}  // namespace dict

#endif
