#include "dict/lint/places.h"

#include <algorithm>

namespace dict {

static void move(cursor& cursor, const syntax::tree& tree, uint64_t byte) {
  byte = std::min<uint64_t>(byte, tree.text.size());
  const syntax::place before = cursor.at;
  const bool goes_on = byte >= before.byte;
  if (goes_on) syntax::move_to(cursor.at, tree.text, byte);
  if (!goes_on) cursor.at = syntax::place_at(tree, byte);
  if (goes_on && cursor.at.line == before.line) {
    const syntax::place rest{before.line, byte - before.byte, byte};
    cursor.characters += syntax::columns_at(tree.text, rest).characters;
  } else {
    cursor.characters = syntax::columns_at(tree.text, cursor.at).characters;
  }
}

region region_of(places& in, const lint::span& span) {
  const lint::source& source = in.sources[span.source];
  cursor& start = in.starts[span.source];
  cursor& end = in.ends[span.source];
  move(start, source.tree, span.start);
  move(end, source.tree, span.start + span.length);
  return {source.name, start.at.line, start.characters + 1, end.at.line, end.characters + 1};
}

}  // namespace dict
