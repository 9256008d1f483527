// Walking the elements of one array.
//
//   dd_walk walk(list, TAV_FLD_FIELD);
//   while (tav_flist_t* field = walk.next(at(&ebuf, HERE))) { ... }
//   if (dd_failed(ebuf)) return list_failed(...);
//
// A library ends every walk with an error code of its own, "nothing more to find"; this file alone
// knows that code, and clears the buffer when a step of the walk sets it. What is left in the
// buffer after a walk is therefore a failure, whatever its code: of the walk itself or of a call in
// the loop's body, after which the walk takes no further step.
#ifndef DD_WALK_H
#define DD_WALK_H

#include "dd/call.h"
#include "dd/owners.h"

class dd_walk {
 public:
  dd_walk(tav_flist_t* list, uint32_t array) : list_(list), array_(array) {}

  // The next element, borrowed; null at the end and on a failure.
  tav_flist_t* next(tav_ebuf* ebuf) { return step(tav_flist_elem_get_next, ebuf); }
  // The next element, removed from the list; null at the end and on a failure.
  dd_flist take(tav_ebuf* ebuf) { return dd_flist(step(tav_flist_elem_take_next, ebuf)); }
  // The id of the element that next() or take() gave last.
  int32_t id() const { return id_; }

 private:
  template <class Step>
  tav_flist_t* step(Step get, tav_ebuf* ebuf) {
    if (dd_failed(*ebuf)) return nullptr;
    tav_flist_t* element = get(list_, array_, &id_, 0, &cookie_, 0, ebuf);
    if (element == nullptr && ebuf->err_code == TAV_ERR_NOT_FOUND) dd_clear(*ebuf);
    return element;
  }

  tav_flist_t* list_;
  uint32_t array_;
  int32_t id_ = 0;
  tav_cookie_t* cookie_ = nullptr;
};

#endif
