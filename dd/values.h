// Reading and writing one value of a list, with a default for a value that is missing.
#ifndef DD_VALUES_H
#define DD_VALUES_H

#include "dd/owners.h"
#include "dd/vantor.h"

// The field's value, borrowed, or null where it is absent.
inline const char* dd_text_or_null(tav_flist_t* list, uint32_t field, tav_ebuf* ebuf) {
  return static_cast<const char*>(tavi_flist_get(list, field, 0, 1, 0, ebuf));
}
inline const int32_t* dd_int_or_null(tav_flist_t* list, uint32_t field, tav_ebuf* ebuf) {
  return static_cast<const int32_t*>(tavi_flist_get(list, field, 0, 1, 0, ebuf));
}

// The field's text (borrowed), empty where it is absent or the call fails.
inline const char* dd_text(tav_flist_t* list, uint32_t field, tav_ebuf* ebuf) {
  const char* text = dd_text_or_null(list, field, ebuf);
  return text != nullptr ? text : "";
}

// The field's number (INT or ENUM), `missing` where it is absent or the call fails.
inline int32_t dd_int(tav_flist_t* list, uint32_t field, tav_ebuf* ebuf, int32_t missing = 0) {
  const int32_t* value = dd_int_or_null(list, field, ebuf);
  return value != nullptr ? *value : missing;
}

// The same for values that must be there: an absent one is an error in the buffer.
inline const char* dd_required_text(tav_flist_t* list, uint32_t field, tav_ebuf* ebuf) {
  const void* text = tavi_flist_get(list, field, 0, 0, 0, ebuf);
  return text != nullptr ? static_cast<const char*>(text) : "";
}
inline int32_t dd_required_int(tav_flist_t* list, uint32_t field, tav_ebuf* ebuf) {
  const void* value = tavi_flist_get(list, field, 0, 0, 0, ebuf);
  return value != nullptr ? *static_cast<const int32_t*>(value) : 0;
}

inline void dd_set_text(tav_flist_t* list, uint32_t field, const char* text, tav_ebuf* ebuf) {
  tavi_flist_set(list, field, 0, 0, text, ebuf);
}
inline void dd_set_int(tav_flist_t* list, uint32_t field, int32_t value, tav_ebuf* ebuf) {
  tavi_flist_set(list, field, 0, 0, &value, ebuf);
}

// Whether the array has elements, which costs less than beginning a walk; false on a failure.
inline bool dd_has_any(tav_flist_t* list, uint32_t array, tav_ebuf* ebuf) {
  return tav_flist_elem_count(list, array, ebuf) > 0;
}

// Puts the owned value and gives up ownership when the list took it; a refused value is freed.
template <class Owner>
void dd_put(tav_flist_t* list, uint32_t field, int32_t elem_id, Owner value, tav_ebuf* ebuf) {
  tavi_flist_put(list, field, elem_id, 0, value.get(), ebuf);
  if (ebuf->err_code == TAV_ERR_NONE) (void)value.release();
}

// Puts the element at the end: its id is the number of elements so far.
inline void dd_append(tav_flist_t* list, uint32_t array, dd_flist element, tav_ebuf* ebuf) {
  const int32_t id = tav_flist_elem_count(list, array, ebuf);
  dd_put(list, array, id, std::move(element), ebuf);
}

#endif
