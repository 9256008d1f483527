// An allocator for the JSON library that throws std::bad_alloc. The library's own ones give null
// when memory runs out, which the library does not test for.
#ifndef DM_JSON_MEMORY_H
#define DM_JSON_MEMORY_H

#include <cstdlib>
#include <new>

namespace dm {

struct json_memory {
  static constexpr bool kNeedFree = true;

  void* Malloc(size_t size) { return Realloc(nullptr, 0, size); }
  void* Realloc(void* memory, size_t, size_t size) {
    if (size == 0) {
      std::free(memory);
      return nullptr;
    }
    void* moved = std::realloc(memory, size);
    return moved != nullptr ? moved : throw std::bad_alloc();
  }
  static void Free(void* memory) { std::free(memory); }
};

}  // namespace dm

#endif
