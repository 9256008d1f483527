#include "vantor/names.h"

#include <cstdio>

#include "dd/vantor.h"

namespace vantor {

const char* known_field(uint32_t field) {
  switch (field) {
#define DD_CASE_ROW(name, type, number, description) \
  case name:                                         \
    return #name;
    DD_FIELD_IDS(DD_CASE_ROW)
#undef DD_CASE_ROW
    default:
      return nullptr;
  }
}

void write_field(uint32_t field, char* buffer, size_t size) {
  const int type = DD_FIELD_ID_TYPE(field);
  const char* keyword = dd_type_keyword(type);
  if (keyword != nullptr) {
    std::snprintf(buffer, size, "%s %d", keyword, DD_FIELD_ID_NUMBER(field));
  } else {
    std::snprintf(buffer, size, "TYPE-%d %d", type, DD_FIELD_ID_NUMBER(field));
  }
}

}  // namespace vantor

// The name of an unknown field is composed in one of eight buffers, which are used in turn.
const char* tav_name_of_field(uint32_t field) {
  constexpr unsigned NAMES = 8;
  static thread_local char made[NAMES][32];
  static thread_local unsigned next;

  if (const char* name = vantor::known_field(field)) return name;
  char* buffer = made[next++ % NAMES];
  vantor::write_field(field, buffer, sizeof made[0]);
  return buffer;
}

#define DD_CASE_ROW(name, number, text) \
  case name:                            \
    return text;

const char* tav_errloc_to_str(int32_t location) {
  switch (location) {
    DD_ERROR_LOCATIONS(DD_CASE_ROW)
    default:
      return "TAV_ERRLOC_UNKNOWN";
  }
}

const char* tav_errclass_to_str(int32_t err_class) {
  switch (err_class) {
    DD_ERROR_CLASSES(DD_CASE_ROW)
    default:
      return "TAV_ERRCLASS_UNKNOWN";
  }
}

const char* tav_taverr_to_str(int32_t err_code) {
  switch (err_code) {
    DD_ERROR_CODES(DD_CASE_ROW)
    default:
      return "TAV_ERR_UNKNOWN";
  }
}
#undef DD_CASE_ROW
