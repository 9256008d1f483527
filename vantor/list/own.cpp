#include <algorithm>
#include <memory>
#include <utility>

#include "vantor/list/handle.h"
#include "vantor/list/reap.h"

namespace vantor {

namespace {

// Whether the list and all above it are unshared. Walks upwards to the root, or to the first array
// whose owned_at equals `sharings`: nothing became shared since all above that array was found
// unshared. If so, stamps the arrays that it passed, so that the next call stops at the first.
bool is_own_way(const tav_flist_t& list) {
  const uint64_t now = sharings.load(std::memory_order_relaxed);
  const tav_flist_t* top = &list;
  for (; is_own(*top->node); top = top->array->home) {
    if (top->array == nullptr || top->array->owned_at == now) break;
    if (top->array->refs > 1) return false;
  }
  if (!is_own(*top->node)) return false;
  for (const tav_flist_t* at = &list; at != top; at = at->array->home) at->array->owned_at = now;
  return true;
}

// Unshares the list's body, of an element too: its array leads to the handle. All above the list
// must be unshared already.
void own_node(tav_flist_t& list) {
  if (is_own(*list.node)) return;
  tav_node* shared = list.node;
  list.node = clone(*shared);
  disown(shared, nullptr);  // null: the handles of the list's elements stay
}

void move_handles(element_array& from, element_array& to) noexcept {
  for (size_t i = 0; i < from.places.size(); ++i) {
    tav_flist_t* handle = from.places[i].handle();
    if (handle == nullptr) continue;
    from.places[i].forget_handle();
    to.places[i].set_handle(handle);
    handle->array = &to;
  }
  to.home = std::exchange(from.home, nullptr);
}

element_array* copy_elements(const element_array& from) {
  auto made = std::make_unique<element_array>();
  made->live = from.live;
  made->next_seq = from.next_seq;
  made->dense = from.dense;
  made->places = from.places;
  for (element& e : made->places) {
    if (e.is_hole()) continue;
    e.forget_handle();
    share_node(*e.node());
  }
  return made.release();
}

// Unshares the element array in a slot of the list's body, which is unshared already. Handles that
// this list has handed out move to the copy.
element_array& own_slot(tav_flist_t& list, slot& s) {
  element_array* shared = s.elements();
  if (shared->refs == 1) return *shared;
  s.elements() = copy_elements(*shared);
  --shared->refs;
  if (shared->home == &list) move_handles(*shared, *s.elements());
  return *s.elements();
}

void own_array(tav_flist_t& list, const element_array* array) {
  if (array->refs == 1) return;
  each_slot(*list.node, [&](slot& s) {
    if (s.has_elements() && s.elements() == array) own_slot(list, s);
  });
}

void own_way(tav_flist_t& list) {
  std::vector<tav_flist_t*> way;
  for (tav_flist_t* at = &list; at != nullptr; at = parent_of(*at)) way.push_back(at);
  std::reverse(way.begin(), way.end());
  tav_flist_t* parent = nullptr;
  for (tav_flist_t* at : way) {
    if (parent != nullptr) own_array(*parent, at->array);
    own_node(*at);
    parent = at;
  }
}

}  // namespace

tav_node& own_from_above(tav_flist_t& list) {
  if (!is_own_way(list)) own_way(list);
  return *list.node;
}

element_array& own_elements(tav_flist_t& list, uint32_t field) {
  return own_slot(list, *find_slot(own(list), field));
}

element_array& need_elements(tav_flist_t& list, uint32_t field) {
  element_array* there = is_known_own(list) ? find_elements(*list.node, field) : nullptr;
  if (there != nullptr && there->refs == 1) return *there;  // the common case
  slot& s = slot_for_elements(own(list), field);
  if (s.is_free()) enter_elements(s, field, new element_array);
  return own_slot(list, s);
}

tav_flist_t* hand_out(tav_flist_t& list, element_array& array, element& e) {
  if (tav_flist_t* there = e.handle()) return there;
  tav_flist_t* handle = new_handle(*e.node());
  handle->array = &array;
  e.set_handle(handle);
  array.home = &list;
  return handle;
}

}  // namespace vantor
