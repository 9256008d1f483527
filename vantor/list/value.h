// The values that a list holds. They have the same layout inside a body and on the heap.
#ifndef VANTOR_LIST_VALUE_H
#define VANTOR_LIST_VALUE_H

#include <array>
#include <cstdint>
#include <cstring>
#include <new>

#include "dd/vantor.h"

struct tav_poid {
  uint64_t database;
  int64_t id;
  // The type's bytes follow.
  const char* type() const { return reinterpret_cast<const char*>(this + 1); }
};

// A decimal is the text as it was written.
struct tav_decimal_value {
  const char* text() const { return reinterpret_cast<const char*>(this); }
};

namespace vantor {

// How a list holds a field of a type: INT in the slot itself, VALUE in the slot's place, ELEMENTS
// as an element array; NONE cannot be held.
enum class holding : uint8_t { NONE, INT, VALUE, ELEMENTS };

inline constexpr size_t TYPES = 32;  // type codes are below this; some have no type

inline constexpr std::array<holding, TYPES> HOLDINGS = [] {
  std::array<holding, TYPES> table{};
  for (const int type : {TAV_FLDT_INT, TAV_FLDT_ENUM}) table.at(size_t(type)) = holding::INT;
  for (const int type : {TAV_FLDT_NUM, TAV_FLDT_TIMESTAMP, TAV_FLDT_INT64, TAV_FLDT_STRING,
                         TAV_FLDT_BUF, TAV_FLDT_BINSTR, TAV_FLDT_POID, TAV_FLDT_DECIMAL}) {
    table.at(size_t(type)) = holding::VALUE;
  }
  for (const int type : {TAV_FLDT_ARRAY, TAV_FLDT_SUBSTRUCT}) {
    table.at(size_t(type)) = holding::ELEMENTS;
  }
  return table;
}();

inline holding holding_of(uint32_t field) {
  const auto type = static_cast<size_t>(DD_FIELD_ID_TYPE(field));
  return type < TYPES ? HOLDINGS[type] : holding::NONE;
}

inline bool is_value(holding held) {
  return held == holding::INT || held == holding::VALUE;
}

inline bool is_text(uint32_t field) {
  const int32_t type = DD_FIELD_ID_TYPE(field);
  return type == TAV_FLDT_STRING || type == TAV_FLDT_DECIMAL;
}

inline bool is_buf(uint32_t field) {
  const int32_t type = DD_FIELD_ID_TYPE(field);
  return type == TAV_FLDT_BUF || type == TAV_FLDT_BINSTR;
}

// Whether the value is a buffer that has a size but null as its bytes.
inline bool is_malformed(uint32_t field, const void* value) {
  if (!is_buf(field)) return false;
  const auto* buf = static_cast<const tav_buf_t*>(value);
  return buf->size > 0 && buf->data == nullptr;
}

size_t further_size(uint32_t field, const void* value);
// The bytes that the value takes. A buffer must not be malformed.
inline size_t value_size(uint32_t field, const void* value) {
  const int32_t type = DD_FIELD_ID_TYPE(field);
  if (type == TAV_FLDT_STRING) return std::strlen(static_cast<const char*>(value)) + 1;
  return type == TAV_FLDT_INT ? sizeof(int32_t) : further_size(field, value);
}

void copy_buf(void* place, const tav_buf_t& from);
// Copies a value of that size to an 8-aligned place; the two may overlap.
inline void copy_value(uint32_t field, void* place, const void* value, size_t size) {
  if (is_buf(field)) return copy_buf(place, *static_cast<const tav_buf_t*>(value));
  std::memmove(place, value, size);
}

// New values on the heap, owned by the caller, freed with free_value. They throw std::bad_alloc.
tav_poid_t* new_poid(uint64_t database, const char* type, int64_t id);
tav_decimal_t* new_decimal(const char* text);
inline void free_value(void* value) {
  ::operator delete(value);
}

}  // namespace vantor

#endif
