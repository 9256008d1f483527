#include "dparse/outline.h"

#include "dd/values.h"
#include "dd/walk.h"

static constexpr char MODULE[] = "dparse_export";

namespace dparse {

// The entries that are open are kept in a vector, not on the stack: the dictionary decides how deep
// they nest.
static void walk_entries(class_outline& outline, tav_flist_t* parent, int depth) {
  std::vector<dd_walk> levels{{parent, TAV_FLD_OBJ_ELEM}};
  while (!levels.empty()) {
    tav_ebuf* ebuf = &outline.failure;
    tav_flist_t* entry = levels.back().next(at(ebuf, HERE));
    if (entry == nullptr && !dd_failed(*ebuf)) {
      levels.pop_back();
      continue;
    }
    const char* name = dd_text_or_null(entry, TAV_FLD_FIELD_NAME, at(ebuf, HERE));
    if (dd_failed(*ebuf)) entry = nullptr;
    const auto here = static_cast<int32_t>(levels.size()) + depth - 1;
    outline.entries.push_back({entry, name, here, TYPE_NOT_KNOWN});
    if (entry == nullptr) return;
    // A failure counts as one inside the entry.
    if (dd_has_any(entry, TAV_FLD_OBJ_ELEM, at(ebuf, HERE)) || dd_failed(*ebuf))
      levels.emplace_back(entry, TAV_FLD_OBJ_ELEM);
  }
}

class_outline outline_classes(tav_flist_t* class_list, const tav_ebuf& ebuf) {
  class_outline outline{{}, {}, ebuf};
  dd_walk walk(class_list, TAV_FLD_OBJ_DESC);
  while (tav_flist_t* element = walk.next(at(&outline.failure, HERE))) {
    const size_t first = outline.entries.size();
    walk_entries(outline, element, 1);
    outline.classes.push_back({element, first, outline.entries.size() - first});
  }
  if (dd_failed(outline.failure)) outline.classes.push_back({nullptr, 0, 0});
  return outline;
}

class_outline outline_entries(tav_flist_t* parent, int depth) {
  class_outline outline{};
  walk_entries(outline, parent, depth);
  return outline;
}

}  // namespace dparse
