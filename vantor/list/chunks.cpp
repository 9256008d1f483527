#include "vantor/list/chunks.h"

#include <pthread.h>

#include <atomic>
#include <new>

// Under the address sanitizer, memory of a chunk that is in no block must not be touched.
#if defined(__SANITIZE_ADDRESS__)
#define VANTOR_POISONS 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define VANTOR_POISONS 1
#endif
#endif
#ifdef VANTOR_POISONS
#include <sanitizer/asan_interface.h>
#else
#define ASAN_POISON_MEMORY_REGION(memory, size) ((void)(memory), (void)(size))
#define ASAN_UNPOISON_MEMORY_REGION(memory, size) ((void)(memory), (void)(size))
#endif

namespace vantor {

namespace {

constexpr uint32_t CHUNK = 32 * 1024;
constexpr size_t LARGEST = 2048;  // of a block in a chunk

// While a thread fills the chunk, it counts the blocks made by itself; `left` is FILLING less those
// freed. After that it is the number of blocks left.
constexpr uint64_t FILLING = uint64_t{1} << 62;

struct chunk {
  std::atomic<uint64_t> left{FILLING};

  char* at(uint32_t distance) { return reinterpret_cast<char*>(this) + distance; }
};
constexpr uint32_t START = sizeof(chunk);

// The chunk that this thread fills.
struct filling {
  chunk* into;         // null: none
  uint64_t made;       // blocks, from the beginning
  uint32_t top;        // where the next block stands
  uint32_t last;       // where the last one stands; 0: it is exact, was shortened or freed
  uint32_t run_start;  // where the run began
  uint32_t run_left;   // how many of its blocks this thread has not freed
};
thread_local filling here{};

void leave_chunk(chunk* old, uint64_t freed) noexcept {
  if (old->left.fetch_sub(freed, std::memory_order_acq_rel) > freed) return;
  old->~chunk();
  ::operator delete(old);
}

void leave_filled() noexcept {
  if (here.into != nullptr) leave_chunk(here.into, FILLING - here.made);
  here = {};
}

// Leaves the chunk when its thread ends. A thread_local object with a destructor would do that too,
// but where there is no memory to note the destructor, the C library ends the program.
class thread_end {
 public:
  thread_end() : is_made_(pthread_key_create(&key_, [](void*) { leave_filled(); }) == 0) {}
  void expect() const {
    if (!is_made_ || pthread_setspecific(key_, &here) != 0) throw std::bad_alloc();
  }

 private:
  pthread_key_t key_{};
  bool is_made_;
};

void next_chunk() {
  static const thread_end end;
  end.expect();
  auto* made = new (::operator new(CHUNK)) chunk;
  ASAN_POISON_MEMORY_REGION(made->at(START), CHUNK - START);
  leave_filled();
  here = {made, 0, START, 0, START, 0};
}

// What was freed in the chunk that this thread fills: its place is used again if nothing stands
// above it.
void take_back(uint32_t distance, uint64_t left) noexcept {
  if (distance == here.last) here.last = 0;
  if (distance >= here.run_start && --here.run_left == 0) here.top = here.run_start;
  if (FILLING - left == here.made) here = {here.into, here.made, START, 0, START, 0};
}

}  // namespace

block new_block(size_t size, bool is_exact) {
  if (size > LARGEST) return {::operator new(size), 0};
  if (here.into == nullptr || CHUNK - here.top < size) next_chunk();
  const uint32_t distance = here.top;
  here.last = is_exact ? 0 : distance;
  here.top += static_cast<uint32_t>(size);
  ++here.made;
  ++here.run_left;
  void* memory = here.into->at(distance);
  ASAN_UNPOISON_MEMORY_REGION(memory, size);
  return {memory, distance};
}

void free_block(void* memory, uint32_t distance, size_t head) noexcept {
  if (distance == 0) return ::operator delete(memory);
  ASAN_POISON_MEMORY_REGION(memory, head);
  auto* from = reinterpret_cast<chunk*>(static_cast<char*>(memory) - distance);
  if (from != here.into) return leave_chunk(from, 1);
  take_back(distance, from->left.fetch_sub(1, std::memory_order_acq_rel) - 1);
}

void start_run() noexcept {
  here.run_start = here.top;
  here.run_left = 0;
}

bool has_last() noexcept {
  return here.last != 0;
}

size_t size_of_last(const void* memory) noexcept {
  if (here.last == 0 || memory != here.into->at(here.last)) return 0;
  return here.top - here.last;
}

void shorten_last(size_t size) noexcept {
  here.top = here.last + static_cast<uint32_t>(size);
  here.last = 0;
  ASAN_POISON_MEMORY_REGION(here.into->at(here.top), CHUNK - here.top);
}

}  // namespace vantor
