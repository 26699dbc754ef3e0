// Preloaded into a benchmark program, counts what it allocates on the C heap.  The
// programs do not link it, so timed runs use the C library's functions themselves.
#include <atomic>
#include <cstddef>
#include <cstdint>

namespace {

std::atomic<uint64_t> allocations{0};

void count() {
  allocations.fetch_add(1, std::memory_order_relaxed);
}

}  // namespace

extern "C" {

void* __libc_malloc(size_t size);
void* __libc_calloc(size_t count, size_t size);
void* __libc_realloc(void* block, size_t size);
void* __libc_memalign(size_t alignment, size_t size);

uint64_t benchAllocations() {
  return allocations.load(std::memory_order_relaxed);
}

void* malloc(size_t size) {
  count();
  return __libc_malloc(size);
}

void* calloc(size_t members, size_t size) {
  count();
  return __libc_calloc(members, size);
}

void* realloc(void* block, size_t size) {
  count();
  return __libc_realloc(block, size);
}

void* aligned_alloc(size_t alignment, size_t size) {
  count();
  return __libc_memalign(alignment, size);
}
}
