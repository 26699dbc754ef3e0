// Where the linker's --wrap option sends calls of every test program.
#include <cstddef>

#include "support/CallScript.h"
#include "support/FailingHeap.h"

extern "C" {

void* __real_malloc(size_t size);
void* __real_calloc(size_t count, size_t size);
void* __real_realloc(void* block, size_t size);
void* __real_shmat(int id, const void* address, int flags);

void* __wrap_malloc(size_t size) {
  return FailingHeap::refuses() ? nullptr : __real_malloc(size);
}
void* __wrap_calloc(size_t count, size_t size) {
  return FailingHeap::refuses() ? nullptr : __real_calloc(count, size);
}
void* __wrap_realloc(void* block, size_t size) {
  return FailingHeap::refuses() ? nullptr : __real_realloc(block, size);
}
void* __wrap_shmat(int id, const void* address, int flags) {
  const bool failed = zot_test::fails(zot_test::next(zot_test::attaches));
  return failed ? reinterpret_cast<void*>(-1) : __real_shmat(id, address, flags);
}

}  // extern "C"
