#include "syntax/places.h"

#include <algorithm>

#include "dd/utf8.h"

namespace syntax {

static uint32_t lines_in(std::string_view text) {
  return static_cast<uint32_t>(std::count(text.begin(), text.end(), '\n'));
}

void count_lines(tree& tree, uint64_t from) {
  const std::string_view text = tree.text;
  tree.lines.resize(std::min<size_t>(from / LINE_BLOCK + 1, tree.lines.size()));
  if (tree.lines.empty()) tree.lines.push_back(0);
  tree.lines.reserve(text.size() / LINE_BLOCK + 1);
  for (size_t at = (tree.lines.size() - 1) * LINE_BLOCK; at + LINE_BLOCK <= text.size();
       at += LINE_BLOCK)
    tree.lines.push_back(tree.lines.back() + lines_in(text.substr(at, LINE_BLOCK)));
}

place place_at(const tree& tree, uint64_t byte) {
  const std::string_view before = std::string_view(tree.text).substr(0, byte);
  const size_t block = std::min(before.size() / LINE_BLOCK, tree.lines.size() - 1);
  const size_t line_start = before.rfind('\n') + 1;  // npos + 1 is 0
  return {tree.lines[block] + lines_in(before.substr(block * LINE_BLOCK)) + uint64_t{1},
          before.size() - line_start, before.size()};
}

void move_to(place& place, std::string_view text, uint64_t byte) {
  const std::string_view between = text.substr(place.byte, byte - place.byte);
  const size_t last = between.rfind('\n');
  const uint64_t line_start =
      last == between.npos ? place.byte - place.column : place.byte + last + 1;
  place = {place.line + lines_in(between), byte - line_start, byte};
}

columns columns_at(std::string_view text, const place& place) {
  std::string_view before = text.substr(place.byte - place.column, place.column);
  columns result;
  while (!before.empty()) {
    const size_t size = std::max<size_t>(dd_utf8_length(before.data(), before.size()), 1);
    ++result.characters;
    result.utf16 += size == 4 ? 2 : 1;
    before.remove_prefix(size);
  }
  return result;
}

}  // namespace syntax
