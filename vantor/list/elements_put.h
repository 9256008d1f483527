// Handing out, putting and dropping the elements of a list.
#ifndef VANTOR_LIST_ELEMENTS_PUT_H
#define VANTOR_LIST_ELEMENTS_PUT_H

#include "vantor/list/handle.h"

namespace vantor {

// The element's handle, borrowed; null where there is no such element. All calls here may throw
// std::bad_alloc.
tav_flist_t* lend_element(tav_flist_t& list, uint32_t field, int32_t id);
// Makes `content` the body of the element `id`, which is added at the end where there is none. The
// array must be unshared. Takes over one owner of the content, also when it throws. An existing
// element keeps its place and its handle.
element& place_content(element_array& array, int32_t id, tav_node* content);
// Makes the list `put` itself the element `id`: its handle stays valid. The body and the handle of
// an earlier element of that id are freed.
void place_list(tav_flist_t& list, uint32_t field, int32_t id, tav_flist_t* put);
// Drops the element; false where there is none.
bool drop_element(tav_flist_t& list, uint32_t field, int32_t id);

}  // namespace vantor

#endif
