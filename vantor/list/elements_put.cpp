#include "vantor/list/elements_put.h"

#include <memory>

#include "vantor/list/reap.h"

namespace vantor {

static element* find_element(tav_flist_t& list, uint32_t field, int32_t id) {
  element_array* array = find_elements(*list.node, field);
  return array != nullptr ? find_id(*array, id) : nullptr;
}

tav_flist_t* lend_element(tav_flist_t& list, uint32_t field, int32_t id) {
  if (find_element(list, field, id) == nullptr) return nullptr;  // before anything is unshared
  element_array& array = own_elements(list, field);
  return hand_out(list, array, *find_id(array, id));
}

element& place_content(element_array& array, int32_t id, tav_node* content) {
  std::unique_ptr<tav_node, reap_node> owner(content);
  element* e = find_id(array, id);
  if (e == nullptr) {
    e = &add(array, id, content);
    (void)owner.release();
    return *e;
  }
  tav_node* before = e->node();
  e->set_node(owner.release());
  disown(before, e->handle());
  return *e;
}

// The list is complete, mostly.
static void shrink_arrays(tav_node& node) {
  each_slot(node, [](slot& s) {
    if (s.has_elements() && s.elements()->refs == 1) s.elements()->places.shrink_to_fit();
  });
}

void place_list(tav_flist_t& list, uint32_t field, int32_t id, tav_flist_t* put) {
  element_array& array = need_elements(list, field);
  element* e = find_id(array, id);
  finish(*put->node, false);
  shrink_arrays(*put->node);
  if (e == nullptr) {
    e = &add(array, id, put->node);
  } else {
    tav_flist_t* before = e->handle();
    disown(e->node(), before);
    free_handle(before);
  }
  e->set_handle(put);
  put->array = &array;
  array.home = &list;
}

bool drop_element(tav_flist_t& list, uint32_t field, int32_t id) {
  if (find_element(list, field, id) == nullptr) return false;
  element_array& array = own_elements(list, field);
  element& gone = *find_id(array, id);
  tav_node* node = gone.node();
  const std::unique_ptr<tav_flist_t, handle_owner> handle(gone.handle());
  remove(array, gone);
  disown(node, handle.get());
  return true;
}

}  // namespace vantor
