#include "syntax/layout.h"

namespace syntax {

size_t column_of(const parsing& in, const token& token) {
  const size_t start = in.base + token.start;
  size_t line = start;
  while (line > in.base && (in.text[line - 1] == ' ' || in.text[line - 1] == '\t')) --line;
  const bool begins_line = line == 0 || in.text[line - 1] == '\n';
  return begins_line ? start - line : NO_COLUMN;
}

size_t column_of_block(const parsing& in, const token& head, const token& first) {
  const size_t column = column_of(in, head);
  const size_t inside = column_of(in, first);
  const bool is_indented = inside > column || first.kind() == DPARSE_KEY_CLOSE;
  return is_indented ? column : NO_COLUMN;
}

bool ends_block(const parsing& in, size_t block, const token& next) {
  const size_t column = column_of(in, next);
  if (block == NO_COLUMN || column == NO_COLUMN) return false;
  return next.kind() == DPARSE_KEY_CLOSE ? column < block : column <= block;
}

}  // namespace syntax
