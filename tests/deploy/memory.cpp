#include "tests/deploy/memory.h"

#include <cstdlib>
#include <new>

long until_no_memory = 0;
long allocations = 0;
size_t allocated = 0;

void* operator new(size_t size) {
  ++allocations;
  allocated += size;
  void* bytes = until_no_memory > 0 && --until_no_memory == 0 ? nullptr : std::malloc(size);
  return bytes != nullptr ? bytes : throw std::bad_alloc();
}
void operator delete(void* bytes) noexcept {
  std::free(bytes);
}
void operator delete(void* bytes, size_t) noexcept {
  std::free(bytes);
}
