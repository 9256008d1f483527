// The values that a list holds on the heap: counted, never changed once made, so that any number of
// lists share them and a borrowed pointer outlives every rearrangement of its list.
#ifndef VANTOR_VALUE_H
#define VANTOR_VALUE_H

#include <cstdint>
#include <cstring>
#include <new>

#include "dd/vantor.h"

namespace vantor {

struct counted {
  uint32_t refs;
};

// A text: the bytes follow the count.
struct text_value : counted {
  char* text() { return reinterpret_cast<char*>(this + 1); }
};

// A byte buffer: the bytes follow the record that is lent.
struct buf_value : counted {
  tav_buf_t buf;
};

}  // namespace vantor

struct tav_poid : vantor::counted {
  uint64_t database;
  int64_t id;
  // The type's bytes follow.
  const char* type() const { return reinterpret_cast<const char*>(this + 1); }
};

struct tav_decimal_value : vantor::counted {
  // The text as it was written follows.
  const char* text() const { return reinterpret_cast<const char*>(this + 1); }
};

namespace vantor {

// How a list holds a field of a type.
enum class holding : uint8_t { NONE, NUMBER, OBJECT, ELEMENTS };

inline holding holding_of(uint32_t field) {
  switch (DD_FIELD_ID_TYPE(field)) {
    case TAV_FLDT_INT:
    case TAV_FLDT_ENUM:
    case TAV_FLDT_NUM:
    case TAV_FLDT_TIMESTAMP:
    case TAV_FLDT_INT64:
      return holding::NUMBER;
    case TAV_FLDT_STRING:
    case TAV_FLDT_BUF:
    case TAV_FLDT_BINSTR:
    case TAV_FLDT_POID:
    case TAV_FLDT_DECIMAL:
      return holding::OBJECT;
    case TAV_FLDT_ARRAY:
    case TAV_FLDT_SUBSTRUCT:
      return holding::ELEMENTS;
    default:
      return holding::NONE;
  }
}

// The size of a NUMBER field's value in bytes.
inline size_t number_size(uint32_t field) {
  const int32_t type = DD_FIELD_ID_TYPE(field);
  return type == TAV_FLDT_INT || type == TAV_FLDT_ENUM ? sizeof(int32_t) : sizeof(int64_t);
}

// A new object with `extra` bytes after it, counted once. Throws std::bad_alloc.
template <class Object>
Object* new_counted(size_t extra) {
  auto* object = new (::operator new(sizeof(Object) + extra)) Object;
  object->refs = 1;
  return object;
}

// A new object followed by a text. Throws std::bad_alloc.
template <class Object>
Object* new_with_text(const char* text) {
  const size_t size = std::strlen(text) + 1;
  auto* object = new_counted<Object>(size);
  std::memcpy(static_cast<void*>(object + 1), text, size);
  return object;
}

template <class Object>
Object* share(const Object* object) {
  auto* shared = const_cast<Object*>(object);
  ++shared->refs;
  return shared;
}

inline void release(counted* object) {
  if (object != nullptr && --object->refs == 0) ::operator delete(object);
}

struct free_counted {
  void operator()(counted* object) const { release(object); }
};

// The object for a copy of an OBJECT field's value, owned; null for a value that is malformed.
// Throws std::bad_alloc.
counted* copy_in(uint32_t field, const void* value);

// The value as the interface shows it, borrowed.
void* lend(uint32_t field, counted* object);

}  // namespace vantor

#endif
