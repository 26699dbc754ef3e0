#include "support/RefusedAttach.h"

#include <cerrno>

// The linker's --wrap option sends the calls here.
extern "C" void* __real_shmat(int id, const void* address, int flags);
extern "C" void* __wrap_shmat(int id, const void* address, int flags) {
  if (zot_test::RefusedAttach::error == 0) {
    return __real_shmat(id, address, flags);
  }
  errno = zot_test::RefusedAttach::error;
  return reinterpret_cast<void*>(-1);
}
