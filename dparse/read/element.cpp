#include "dparse/read/element.h"

#include "dd/values.h"
#include "dparse/read/state.h"

static constexpr char MODULE[] = "dparse";

namespace dparse {

int store_text(target_element& element, uint32_t field, const char* text) {
  tav_ebuf ebuf{};
  dd_set_text(element.list, field, text, at(&ebuf, HERE));
  return done(HERE, ebuf);
}

int store_number(target_element& element, uint32_t field, int32_t number) {
  tav_ebuf ebuf{};
  dd_set_int(element.list, field, number, at(&ebuf, HERE));
  return done(HERE, ebuf);
}

int store_element(target_element& element, uint32_t array, uint32_t field, const char* text) {
  tav_ebuf ebuf{};
  dd_flist inner(tav_flist_create(at(&ebuf, HERE)));
  dd_set_text(inner.get(), field, text, at(&ebuf, HERE));
  dd_append(element.list, array, std::move(inner), at(&ebuf, HERE));
  return done(HERE, ebuf);
}

const char* text_of(const target_element& element, uint32_t field) {
  tav_ebuf ebuf{};
  return dd_text(element.list, field, at(&ebuf, HERE));
}

}  // namespace dparse
