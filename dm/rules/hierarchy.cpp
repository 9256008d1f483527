// Rule: no top-level array or substruct has the name of one in a superclass or a subclass.
#include <algorithm>

#include "dm/folded.h"
#include "dm/rules/class_rules.h"

namespace dm {

using own_container = std::pair<std::string, const entry_def*>;  // by folded name

// The class's own containers whose names are among the given ones, in the order of the definition.
// Both inputs are sorted; each name of the shorter one is searched in the longer one.
static std::vector<const entry_def*> common(const std::vector<own_container>& own,
                                            const std::vector<std::string>& names) {
  std::vector<const entry_def*> entries;
  if (own.size() <= names.size()) {
    for (const auto& [name, entry] : own) {
      if (std::binary_search(names.begin(), names.end(), name)) entries.push_back(entry);
    }
  } else {
    for (const std::string& name : names) {
      const auto same = std::lower_bound(own.begin(), own.end(), own_container(name, nullptr));
      if (same != own.end() && same->first == name) entries.push_back(same->second);
    }
  }
  std::sort(entries.begin(), entries.end());
  return entries;
}

void check_hierarchy(const class_def& definition, class_world& world, findings& result) {
  std::vector<own_container> own;
  for (const entry_def& entry : definition.entries) {
    if (entry.depth != 1 || !dd_is_container(entry.type)) continue;
    own.emplace_back(folded(text_of(entry, ENTRY_NAME)), &entry);
  }
  if (own.empty()) return;
  std::sort(own.begin(), own.end());
  for (const line_class* related : world.related_to(text_of(definition, CLASS_NAME))) {
    for (const entry_def* entry : common(own, related->containers)) {
      blame(definition, *entry, TAV_ERR_CONFLICT, TAV_FLD_FIELD_NAME,
            join({"stands also in class ", quoted(related->key)}), result);
      result.back().against = related->key;
      result.back().shared = text_of(*entry, ENTRY_NAME);
    }
  }
}

}  // namespace dm
