#include "vantor/list/reap.h"

namespace vantor {

namespace {

// Arrays that wait to be freed, as a stack linked through the arrays themselves: it needs no
// memory, and no nesting is too deep.
struct pile {
  element_array* top = nullptr;

  void push(element_array* array) {
    array->link = top;
    top = array;
  }
  element_array* pop() {
    element_array* array = top;
    top = array->link;
    return array;
  }
};

// Puts the arrays whose elements this handle has handed out on the pile.
void collect_lent(tav_node& node, const tav_flist_t* handle, pile& lent) {
  each_slot(node, [&](slot& s) {
    if (!s.has_elements() || s.elements()->home != handle) return;
    s.elements()->home = nullptr;
    lent.push(s.elements());
  });
}

// Frees the handles of all elements in these arrays, and below them. The elements stay: other lists
// share them.
void free_handles(pile lent) {
  while (lent.top != nullptr) {
    for (element& e : lent.pop()->places) {
      tav_flist_t* handle = e.handle();
      if (handle == nullptr) continue;
      collect_lent(*e.node(), handle, lent);
      e.forget_handle();
      free_handle(handle);
    }
  }
}

void leave_array(element_array* array, const tav_flist_t* handle, pile& dead) {
  if (--array->refs == 0) return dead.push(array);
  if (handle == nullptr || array->home != handle) return;
  array->home = nullptr;
  pile lent;
  lent.push(array);
  free_handles(lent);
}

void give_up(tav_node* node, const tav_flist_t* handle, pile& dead) {
  if (--node->owners > 0) {
    if (handle == nullptr) return;
    pile lent;
    collect_lent(*node, handle, lent);
    return free_handles(lent);
  }
  each_slot(*node, [&](slot& s) {
    if (s.has_elements()) {
      leave_array(s.elements(), handle, dead);
    } else if (s.is_boxed()) {
      release_box(s.boxed());
    }
  });
  free_unless_needed(node);
}

}  // namespace

void disown(tav_node* node, const tav_flist_t* handle) noexcept {
  pile dead;
  give_up(node, handle, dead);
  while (dead.top != nullptr) {
    element_array* array = dead.pop();
    for (element& e : array->places) {
      if (e.is_hole()) continue;
      tav_flist_t* own = e.handle();
      give_up(e.node(), own, dead);
      free_handle(own);
    }
    delete array;
  }
}

}  // namespace vantor
