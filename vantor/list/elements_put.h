// Writing the elements of a list.
#ifndef VANTOR_LIST_ELEMENTS_PUT_H
#define VANTOR_LIST_ELEMENTS_PUT_H

#include "vantor/list/handle.h"

namespace vantor {

// The element, handed out, or null where there is none. Throws std::bad_alloc, as the others.
tav_flist_t* lend_element(tav_flist_t& list, uint32_t field, int32_t id);
// Gives the element `id` of an array of one's own that content (one owner of it), in its place or
// at the end; the handle of an element that is there stays. Frees the content when it throws.
element& place_content(element_array& array, int32_t id, tav_node* content);
// Makes the list itself the element `id`; the handle of an earlier one goes.
void place_list(tav_flist_t& list, uint32_t field, int32_t id, tav_flist_t* put);
// False where there is none.
bool drop_element(tav_flist_t& list, uint32_t field, int32_t id);

}  // namespace vantor

#endif
