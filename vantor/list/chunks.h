// Memory for bodies. They stand close together in chunks, in the order in which they were made, and
// the one made last can be shortened to what it came to hold. A block of the general allocator
// for each took a sixth more, and twice as many cache lines in a walk.
//
// Each thread fills a chunk of its own; blocks may be freed by any thread. A chunk is freed with
// its last block.
#ifndef VANTOR_LIST_CHUNKS_H
#define VANTOR_LIST_CHUNKS_H

#include <cstddef>
#include <cstdint>

namespace vantor {

struct block {
  void* memory;
  uint32_t distance;  // in bytes from the start of its chunk; 0: it has memory of its own
};

// Memory of that size, a multiple of 8. Throws std::bad_alloc. One that is exact is never
// shortened.
block new_block(size_t size, bool is_exact = false);
// Frees a block; under the address sanitizer its first `head` bytes must not be touched any more.
void free_block(void* memory, uint32_t distance, size_t head) noexcept;
// Says that what is made from here on may be freed together soon: if this thread frees all of it,
// the next block stands there again.
void start_run() noexcept;

// Whether the block that this thread made last still stands at the end and may be shortened.
bool has_last() noexcept;
// The size of the block, if it is that one; else 0.
size_t size_of_last(const void* memory) noexcept;
void shorten_last(size_t size) noexcept;

}  // namespace vantor

#endif
