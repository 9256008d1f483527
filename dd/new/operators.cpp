// Replaces `new` and `delete` in programs linked with an allocator whose own operator new ends the
// process when memory runs out: these throw std::bad_alloc instead, as the language demands. The
// memory still comes from that allocator, through malloc and free.
#include <cstdlib>
#include <new>

static void* given(void* memory) {
  return memory != nullptr ? memory : throw std::bad_alloc();
}

// A request for 0 bytes must give a pointer as well.
static void* allocate(std::size_t size) noexcept {
  return std::malloc(size != 0 ? size : 1);
}

// The size must be a multiple of the alignment.
static void* allocate(std::size_t size, std::align_val_t alignment) noexcept {
  const auto step = static_cast<std::size_t>(alignment);
  const std::size_t rounded = (size + step - 1) / step * step;
  return rounded >= size ? std::aligned_alloc(step, rounded != 0 ? rounded : step) : nullptr;
}

void* operator new(std::size_t size) {
  return given(allocate(size));
}
void* operator new[](std::size_t size) {
  return given(allocate(size));
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  return allocate(size);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
  return allocate(size);
}
void* operator new(std::size_t size, std::align_val_t alignment) {
  return given(allocate(size, alignment));
}
void* operator new[](std::size_t size, std::align_val_t alignment) {
  return given(allocate(size, alignment));
}
void* operator new(std::size_t size, std::align_val_t alignment, const std::nothrow_t&) noexcept {
  return allocate(size, alignment);
}
void* operator new[](std::size_t size, std::align_val_t alignment, const std::nothrow_t&) noexcept {
  return allocate(size, alignment);
}

void operator delete(void* memory) noexcept {
  std::free(memory);
}
void operator delete[](void* memory) noexcept {
  std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
  std::free(memory);
}
void operator delete[](void* memory, std::size_t) noexcept {
  std::free(memory);
}
void operator delete(void* memory, const std::nothrow_t&) noexcept {
  std::free(memory);
}
void operator delete[](void* memory, const std::nothrow_t&) noexcept {
  std::free(memory);
}
void operator delete(void* memory, std::align_val_t) noexcept {
  std::free(memory);
}
void operator delete[](void* memory, std::align_val_t) noexcept {
  std::free(memory);
}
void operator delete(void* memory, std::size_t, std::align_val_t) noexcept {
  std::free(memory);
}
void operator delete[](void* memory, std::size_t, std::align_val_t) noexcept {
  std::free(memory);
}
void operator delete(void* memory, std::align_val_t, const std::nothrow_t&) noexcept {
  std::free(memory);
}
void operator delete[](void* memory, std::align_val_t, const std::nothrow_t&) noexcept {
  std::free(memory);
}
