#include "tests/lint/memory.h"

#include <malloc.h>

#include <algorithm>
#include <cstdlib>
#include <new>

size_t live = 0;
size_t most_live = 0;
size_t failing = 0;

void* operator new(size_t size, const std::nothrow_t&) noexcept {
  if (failing != 0 && --failing == 0) return nullptr;
  void* bytes = std::malloc(size);
  live += malloc_usable_size(bytes);
  most_live = std::max(most_live, live);
  return bytes;
}
void* operator new(size_t size) {
  void* bytes = operator new(size, std::nothrow);
  return bytes != nullptr ? bytes : throw std::bad_alloc();
}
void operator delete(void* bytes) noexcept {
  live -= malloc_usable_size(bytes);
  std::free(bytes);
}
void operator delete(void* bytes, size_t) noexcept {
  operator delete(bytes);
}
