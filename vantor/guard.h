// The wrapper around each call of the C interface: it does nothing when the error buffer holds an
// error, and turns exceptions into errors.
#ifndef VANTOR_GUARD_H
#define VANTOR_GUARD_H

#include <cstddef>
#include <new>
#include <stdexcept>

#include "vantor/binding.h"

namespace vantor {

// The field and element that a call works on, for its error.
struct request {
  tav_ebuf* ebuf;
  uint32_t field = 0;
  int32_t rec_id = 0;
  int32_t location = TAV_ERRLOC_LIST;
};

// Sets the request's error and gives null, the result of every call that fails.
inline std::nullptr_t fail(const request& about, int32_t code) {
  const int32_t err_class = code == TAV_ERR_NO_MEM ? TAV_ERRCLASS_SYSTEM : TAV_ERRCLASS_REQUEST;
  tav_set_error(about.ebuf, {about.location, err_class, code, about.field, about.rec_id, 0});
  return nullptr;
}

inline bool has_failed(const tav_ebuf* ebuf) {
  return ebuf != nullptr && ebuf->err_code != TAV_ERR_NONE;
}

// Runs the call unless the buffer holds an error; null, 0 or nothing when it fails.
template <class Result, class Call>
Result guarded(const request& about, Call call) noexcept {
  if (has_failed(about.ebuf)) return Result();
  try {
    return call();
  } catch (const std::bad_alloc&) {
    fail(about, TAV_ERR_NO_MEM);
  } catch (const std::length_error&) {
    fail(about, TAV_ERR_NO_MEM);
  } catch (...) {  // only a data manager throws anything else, and it should not
    fail(about, TAV_ERR_STORAGE);
  }
  return Result();
}

}  // namespace vantor

#endif
