// The name of a top-level array or substruct stands once along a line of classes.
#include <algorithm>

#include "dm/class_rules.h"
#include "dm/folded.h"

namespace dm {

void check_hierarchy(const class_def& definition, class_world& world, findings& result) {
  std::vector<std::pair<std::string, const entry_def*>> own;
  for (const entry_def& entry : definition.entries) {
    if (entry.depth != 1 || !is_container(entry.type)) continue;
    own.emplace_back(folded(text_of(entry, ENTRY_NAME)), &entry);
  }
  if (own.empty()) return;
  world.each_related(text_of(definition, CLASS_NAME),
                     [&](const std::string& related, const std::vector<std::string>& names) {
                       for (const auto& [name, entry] : own) {
                         if (!std::binary_search(names.begin(), names.end(), name)) continue;
                         blame(definition, *entry, TAV_ERR_CONFLICT, TAV_FLD_FIELD_NAME,
                               join({"stands also in class ", quoted(related)}), result);
                       }
                     });
}

}  // namespace dm
