// Where the linker's --wrap option sends calls of every test program.
#include <cstddef>

#include "support/CallScript.h"
#include "support/FailingHeap.h"
#include "support/WatchedFrees.h"

#define REFUSABLE(function, parameters, arguments)                         \
  void* __real_##function parameters;                                      \
  void* __wrap_##function parameters {                                     \
    return FailingHeap::refuses() ? nullptr : __real_##function arguments; \
  }

extern "C" {

REFUSABLE(malloc, (size_t size), (size))
REFUSABLE(calloc, (size_t count, size_t size), (count, size))

void* __real_realloc(void* block, size_t size);
void* __wrap_realloc(void* block, size_t size) {
  WatchedFrees::look(block);  // it may move the bytes and free where they stood
  return FailingHeap::refuses() ? nullptr : __real_realloc(block, size);
}

void __real_free(void* block);
void __wrap_free(void* block) {
  WatchedFrees::look(block);
  __real_free(block);
}

ZOT_SCRIPTED(zot_test::attaches, void*, shmat, (int id, const void* address, int flags), (id, address, flags),
             (errno = entry, reinterpret_cast<void*>(-1)))

}  // extern "C"
