// Where the linker's --wrap option sends calls of every test program.
#undef _FORTIFY_SOURCE  // or the stand-ins at the end would call themselves
#include <syslog.h>
#include <unistd.h>

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

// Under _FORTIFY_SOURCE the library calls these in place of the functions that tests lead
// astray.
#if defined(__GLIBC__)
ssize_t __read_chk(int file, void* bytes, size_t count, size_t) {
  return read(file, bytes, count);
}
void __syslog_chk(int priority, int, const char* format, ...) {
  syslog(priority, format, 0);  // the library passes no argument; the compiler wants one
}
#endif

}  // extern "C"
