#include "vantor/value.h"

namespace vantor {

static counted* copy_buf(const tav_buf_t& from) {
  if (from.size > 0 && from.data == nullptr) return nullptr;
  auto* value = new_counted<buf_value>(from.size);
  value->buf = {from.size, reinterpret_cast<unsigned char*>(value + 1)};
  if (from.size > 0) std::memcpy(value->buf.data, from.data, from.size);
  return value;
}

counted* copy_in(uint32_t field, const void* value) {
  switch (DD_FIELD_ID_TYPE(field)) {
    case TAV_FLDT_STRING:
      return new_with_text<text_value>(static_cast<const char*>(value));
    case TAV_FLDT_BUF:
    case TAV_FLDT_BINSTR:
      return copy_buf(*static_cast<const tav_buf_t*>(value));
    case TAV_FLDT_POID:
      return share(static_cast<const tav_poid*>(value));
    case TAV_FLDT_DECIMAL:
      return share(static_cast<const tav_decimal_value*>(value));
    default:
      return nullptr;
  }
}

void* lend(uint32_t field, counted* object) {
  switch (DD_FIELD_ID_TYPE(field)) {
    case TAV_FLDT_STRING:
      return static_cast<text_value*>(object)->text();
    case TAV_FLDT_BUF:
    case TAV_FLDT_BINSTR:
      return &static_cast<buf_value*>(object)->buf;
    case TAV_FLDT_POID:
      return static_cast<tav_poid*>(object);
    default:
      return static_cast<tav_decimal_value*>(object);
  }
}

}  // namespace vantor
