#include "vantor/list/handle.h"

#include <cstddef>

namespace vantor {

tav_flist_t* new_handle(tav_node& node) {
  tav_node* house = &node;
  if (node.housed.node != nullptr) {
    house = new_node(0, true);
    house->owners = 0;
  }
  house->housed = {&node, nullptr};
  return &house->housed;
}

void free_handle(tav_flist_t* handle) noexcept {
  if (handle == nullptr) return;
  handle->node = nullptr;
  char* at = reinterpret_cast<char*>(handle);
  free_unless_needed(reinterpret_cast<tav_node*>(at - offsetof(tav_node, housed)));
}

}  // namespace vantor
