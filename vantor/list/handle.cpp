#include "vantor/list/handle.h"

#include <cstddef>

namespace vantor {

tav_flist_t* new_handle(tav_node& node) {
  if (node.housed.node != nullptr) return new tav_flist{&node, nullptr, 0, false};
  node.housed = {&node, nullptr, 0, true};
  return &node.housed;
}

void free_handle(tav_flist_t* handle) noexcept {
  if (handle == nullptr) return;
  if (!handle->is_housed) {
    delete handle;
    return;
  }
  handle->node = nullptr;
  char* at = reinterpret_cast<char*>(handle);
  free_unless_needed(reinterpret_cast<tav_node*>(at - offsetof(tav_node, housed)));
}

}  // namespace vantor
