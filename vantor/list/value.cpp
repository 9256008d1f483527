#include "vantor/list/value.h"

namespace vantor {

static size_t text_size(const void* text) {
  return std::strlen(static_cast<const char*>(text)) + 1;
}

size_t further_size(uint32_t field, const void* value) {
  switch (DD_FIELD_ID_TYPE(field)) {
    case TAV_FLDT_DECIMAL:
      return text_size(value);
    case TAV_FLDT_POID:
      return sizeof(tav_poid) + text_size(static_cast<const tav_poid*>(value)->type());
    case TAV_FLDT_BUF:
    case TAV_FLDT_BINSTR:
      return sizeof(tav_buf_t) + static_cast<const tav_buf_t*>(value)->size;
    case TAV_FLDT_ENUM:
      return sizeof(int32_t);
    default:
      return sizeof(int64_t);
  }
}

void copy_buf(void* place, const tav_buf_t& from) {
  const tav_buf_t buf = from;  // a copy, because `from` may lie in the place that is overwritten
  auto* to = static_cast<tav_buf_t*>(place);
  auto* bytes = reinterpret_cast<unsigned char*>(to + 1);
  if (buf.size > 0) std::memmove(bytes, buf.data, buf.size);
  *to = {buf.size, bytes};
}

tav_poid_t* new_poid(uint64_t database, const char* type, int64_t id) {
  const size_t size = text_size(type);
  auto* poid = new (::operator new(sizeof(tav_poid) + size)) tav_poid{database, id};
  std::memcpy(static_cast<void*>(poid + 1), type, size);
  return poid;
}

tav_decimal_t* new_decimal(const char* text) {
  const size_t size = text_size(text);
  return static_cast<tav_decimal_t*>(std::memcpy(::operator new(size), text, size));
}

}  // namespace vantor
