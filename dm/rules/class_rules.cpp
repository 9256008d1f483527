#include "dm/rules/class_rules.h"

#include <algorithm>

namespace dm {

void blame(const class_def& definition, int32_t code, uint32_t field, std::string_view fault,
           findings& result) {
  const std::string name = quoted(text_of(definition, CLASS_NAME));
  result.push_back({{code, field, definition.elem_id, 0, join({"Class ", name, " ", fault, "."})}});
}

void blame(const class_def& definition, const entry_def& entry, int32_t code, uint32_t field,
           std::string_view fault, findings& result) {
  const std::string name = quoted(text_of(definition, CLASS_NAME));
  const std::string path = quoted(path_of(definition, entry));
  result.push_back(
      {{code, field, entry.elem_id, 0, join({"Class ", name, ", field ", path, " ", fault, "."})}});
}

bool may_repeat(const class_def& definition, entry_attribute which) {
  std::vector<uint64_t> keys;  // parents and hashes
  keys.reserve(definition.entries.size());
  for (const entry_def& entry : definition.entries) {
    const uint64_t parent = static_cast<uint32_t>(entry.parent);
    const uint32_t hash = which == ENTRY_NAME ? entry.name_hash : dd_hash(text_of(entry, which));
    keys.push_back(parent << 32 | hash);
  }
  std::sort(keys.begin(), keys.end());
  return std::adjacent_find(keys.begin(), keys.end()) != keys.end();
}

void check_class(const class_def& definition, class_world& world, std::vector<std::string>& tables,
                 findings& result) {
  tables.clear();
  check_texts(definition, result);
  check_name(definition, world, result);
  check_structure(definition, result);
  if (!result.empty()) return;
  check_fields(definition, world, result);
  check_hierarchy(definition, world, result);
  check_storage(definition, world, tables, result);
}

}  // namespace dm
