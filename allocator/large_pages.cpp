// Large pages for the allocator: a whole dictionary touches some 40,000 small ones, each at the
// cost of a fault. Address space alone is set aside; pages come as they are touched, as large ones
// where the system gives them on request. (The allocator's own option takes them from the pool that
// is reserved for databases, and may then be killed for want of one.)
#include <mimalloc.h>
#include <sys/mman.h>

#include <cstddef>
#include <cstdint>

static constexpr size_t ALIGNMENT = size_t{32} << 20;  // of the allocator's segments
static constexpr size_t SIZE = size_t{256} << 20;      // beyond that it asks the system as usual

[[gnu::constructor]] static void offer_large_pages() {
  void* got = mmap(nullptr, SIZE + ALIGNMENT, PROT_READ | PROT_WRITE,
                   MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
  if (got == MAP_FAILED) return;
  const auto at = reinterpret_cast<uintptr_t>(got);
  const size_t before = (ALIGNMENT - at % ALIGNMENT) % ALIGNMENT;
  void* start = static_cast<char*>(got) + before;
  const bool is_taken = madvise(start, SIZE, MADV_HUGEPAGE) == 0 &&
                        mi_manage_os_memory(start, SIZE, true, true, true, -1);
  if (!is_taken) munmap(got, SIZE + ALIGNMENT);
}
