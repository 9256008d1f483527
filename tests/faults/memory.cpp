// The memory of the fault tests: after so many allocations of the tool there is none.
#include <cstdlib>
#include <new>

#include "tests/faults/plan.h"

static bool is_under_plan = false;

void put_memory_under_plan() {
  is_under_plan = true;
}

static void* allocate(size_t size) noexcept {
  if (is_under_plan) {
    const long n = ++plan().allocations;
    const long failing = plan().failing_allocation;
    if (failing != 0 && (plan().is_memory_gone ? n >= failing : n == failing)) return nullptr;
  }
  return std::malloc(size != 0 ? size : 1);
}

static void* given(void* memory) {
  return memory != nullptr ? memory : throw std::bad_alloc();
}

void* operator new(size_t size) {
  return given(allocate(size));
}
void* operator new[](size_t size) {
  return given(allocate(size));
}
void* operator new(size_t size, const std::nothrow_t&) noexcept {
  return allocate(size);
}
void* operator new[](size_t size, const std::nothrow_t&) noexcept {
  return allocate(size);
}
void operator delete(void* memory) noexcept {
  std::free(memory);
}
void operator delete[](void* memory) noexcept {
  std::free(memory);
}
void operator delete(void* memory, size_t) noexcept {
  std::free(memory);
}
void operator delete[](void* memory, size_t) noexcept {
  std::free(memory);
}
