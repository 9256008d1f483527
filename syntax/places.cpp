#include "syntax/places.h"

#include <algorithm>

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

// The size of the character that the bytes begin with (UTF-8, shortest form, no surrogates), or 1.
static size_t character_size(std::string_view bytes) {
  const auto byte = [bytes](size_t i) { return static_cast<unsigned char>(bytes[i]); };
  const unsigned first = byte(0);
  const size_t size = first < 0xc2 ? 1 : first < 0xe0 ? 2 : first < 0xf0 ? 3 : first < 0xf5 ? 4 : 1;
  if (size > bytes.size()) return 1;
  for (size_t i = 1; i < size; ++i)
    if ((byte(i) & 0xc0) != 0x80) return 1;
  if (size < 3) return size;
  const unsigned second = byte(1);
  const bool is_refused = (first == 0xe0 && second < 0xa0) || (first == 0xed && second > 0x9f) ||
                          (first == 0xf0 && second < 0x90) || (first == 0xf4 && second > 0x8f);
  return is_refused ? 1 : size;
}

columns columns_at(std::string_view text, const place& place) {
  std::string_view before = text.substr(place.byte - place.column, place.column);
  columns result;
  while (!before.empty()) {
    const size_t size = character_size(before);
    ++result.characters;
    result.utf16 += size == 4 ? 2 : 1;
    before.remove_prefix(size);
  }
  return result;
}

}  // namespace syntax
