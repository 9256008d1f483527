#include "dict/terminal/columns.h"

#include <algorithm>

#include "dd/visible.h"

namespace dict {

// In characters, not bytes.
static size_t width_of(std::string_view text) {
  return static_cast<size_t>(std::count_if(text.begin(), text.end(), [](char c) {
    return (static_cast<unsigned char>(c) & 0xc0) != 0x80;
  }));
}

static std::vector<size_t> widths_of(const columns& table) {
  std::vector<size_t> widths;
  for (const auto& row : table.rows) {
    if (widths.size() < row.size()) widths.resize(row.size());
    for (size_t i = 0; i < row.size(); ++i) {
      widths[i] = std::max(widths[i], width_of(dd_visible(row[i])));
    }
  }
  return widths;
}

std::ostream& operator<<(std::ostream& out, const columns& table) {
  const std::vector<size_t> widths = widths_of(table);
  for (const auto& row : table.rows) {
    std::string line(table.indent, ' ');
    for (size_t i = 0; i < row.size(); ++i) {
      const std::string cell = dd_visible(row[i]);
      line.append(cell).append(widths[i] + 2 - width_of(cell), ' ');
    }
    out << line.erase(line.find_last_not_of(' ') + 1) << '\n';
  }
  return out;
}

}  // namespace dict
