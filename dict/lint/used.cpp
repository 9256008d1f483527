#include "dict/lint/used.h"

#include <vector>

#include "dd/field_ids.h"
#include "dm/folded.h"
#include "vantor/binding.h"

namespace dict {

static void push(const tav_node* node, uint32_t array, std::vector<const tav_node*>& waiting) {
  uint32_t position = 0;
  int32_t id = 0;
  while (const tav_node* element = tav_node_next(node, array, &position, &id)) {
    waiting.push_back(element);
  }
}

// Without recursion: entries may be nested deeper than the stack takes.
std::set<std::string> used_fields(tav_flist_t* classes) {
  std::set<std::string> names;
  std::vector<const tav_node*> waiting;
  push(tav_node_of(classes), TAV_FLD_OBJ_DESC, waiting);
  while (!waiting.empty()) {
    const tav_node* node = waiting.back();
    waiting.pop_back();
    const void* name = tav_node_get(node, TAV_FLD_FIELD_NAME);
    if (name != nullptr) names.insert(dm::folded(static_cast<const char*>(name)));
    push(node, TAV_FLD_OBJ_ELEM, waiting);
  }
  return names;
}

}  // namespace dict
