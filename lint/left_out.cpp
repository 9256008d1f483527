#include "lint/left_out.h"

#include <algorithm>

#include "dd/fold.h"
#include "dd/longest_text.h"

namespace lint {

static std::string key_of(const part_name& part) {
  std::string key(1, static_cast<char>('0' + static_cast<int>(part.kind)));
  for (const std::string_view name : {part.definition, part.entry, part.attribute}) {
    key += '\n';  // no name holds one
    for (const char c : name) key += static_cast<char>(dd_fold(c));
  }
  return key;
}

void leave_out(left_out& from, const part_name& part) {
  // Nothing that is read has such a name.
  const size_t longest = std::max(part.definition.size(), part.entry.size());
  if (longest <= DD_LONGEST_TEXT) from.parts.insert(key_of(part));
}

bool is_left_out(const left_out& from, const part_name& part) {
  return !from.parts.empty() && from.parts.contains(key_of(part));
}

}  // namespace lint
